#pragma once

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
    /// @throws std::runtime_error, or what else comes out of Xerces, when the platform can't be
    ///         initialised.
    XmlSession();
    XmlSession(const XmlSession&) = delete;
    XmlSession& operator=(const XmlSession&) = delete;
    ~XmlSession();

private:
    bool isPlatformInitialized_ = false;
};

}  // namespace marrowpress
