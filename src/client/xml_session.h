#pragma once

#include "xml/request_memory.h"

namespace marrowpress {

/// The scope of a request: the XML platform is ready in it, and everything that
/// belongs to the request ends with it.
///
/// Documents, parsers, tables and singletons that are created on first use
/// during the request are destroyed in a fixed order, those that hold XML
/// first, and then the platform is terminated. So nothing of one request is
/// seen by the next.
class XmlSession {
public:
    /// @throws std::bad_alloc when there is no memory, std::runtime_error when the platform can't
    /// be
    ///         initialised for another reason. The next session starts anew.
    XmlSession();
    XmlSession(const XmlSession&) = delete;
    XmlSession& operator=(const XmlSession&) = delete;
    ~XmlSession();

private:
    // What the engine has taken is given back after everything else.
    RequestMemory memory_;
};

}  // namespace marrowpress
