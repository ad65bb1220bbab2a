#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include "cli/removal_on_signal.h"

namespace marrowpress {

/// There is no place for what a command writes in passing. It is told by a sentence.
class ScratchError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A folder for this process alone, below the folder that the environment variable TMPDIR names,
/// else below /tmp. It is removed with all that is in it at the end, and when SIGHUP, SIGINT,
/// SIGQUIT or SIGTERM ends the process.
class ScratchFolder {
public:
    /// @throws ScratchError with a sentence that says where it cannot be made, and why. A path that
    /// the client would read as another one is no place for it.
    ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    /// Absolute, and readable by the client.
    const std::filesystem::path& path() const noexcept { return path_; }

private:
    std::filesystem::path path_;
    std::optional<RemovalOnSignal> removal_;
};

}  // namespace marrowpress
