#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace marrowpress {

/// Another TMPDIR for the length of a scope; null: none.
class TmpDir {
public:
    explicit TmpDir(const char* value) {
        if (const char* const before = std::getenv("TMPDIR")) {
            before_ = before;
        }
        set(value);
    }
    TmpDir(const TmpDir&) = delete;
    TmpDir& operator=(const TmpDir&) = delete;
    ~TmpDir() { set(before_ ? before_->c_str() : nullptr); }

private:
    static void set(const char* value) {
        if (value) {
            setenv("TMPDIR", value, 1);
        } else {
            unsetenv("TMPDIR");
        }
    }

    std::optional<std::string> before_;
};

}  // namespace marrowpress
