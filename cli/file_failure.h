#pragma once

#include <cerrno>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <system_error>

namespace marrowpress {

/// What could not be done with a file.
enum class FileAction : std::uint8_t { kRead, kWrite };

/// A file that could not be read or written. What it says is a clause: "cannot write /out/m.dita:
/// No space left on device".
class FileFailure : public std::runtime_error {
public:
    /// `reason` is the system's.
    FileFailure(FileAction action, const std::string& path, const std::string& reason)
        : std::runtime_error((action == FileAction::kRead ? "cannot read " : "cannot write ") +
                             path + ": " + reason),
          action_(action),
          path_(path),
          reason_(reason) {}

    /// For the system call that has just failed.
    static FileFailure ofLastCall(FileAction action, const std::string& path) {
        return {action, path, std::generic_category().message(errno)};
    }

    FileAction action() const noexcept { return action_; }
    const std::string& path() const noexcept { return path_; }
    const std::string& reason() const noexcept { return reason_; }

private:
    FileAction action_;
    std::string path_;
    std::string reason_;
};

}  // namespace marrowpress
