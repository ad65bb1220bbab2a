#pragma once

#include <unicode/putil.h>

#include <string>

namespace marrowpress {

/// Another data directory of ICU's for the length of a scope, and none by default.
class IcuDataDirectory {
public:
    explicit IcuDataDirectory(const char* path = "") { u_setDataDirectory(path); }
    IcuDataDirectory(const IcuDataDirectory&) = delete;
    IcuDataDirectory& operator=(const IcuDataDirectory&) = delete;
    ~IcuDataDirectory() { u_setDataDirectory(before_.c_str()); }

    /// The directory that ICU has now.
    static std::string current() { return u_getDataDirectory(); }

private:
    std::string before_ = u_getDataDirectory();
};

}  // namespace marrowpress
