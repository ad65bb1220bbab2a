#pragma once

#include <filesystem>
#include <stdexcept>

namespace marrowpress {

/// There is no place for what a run writes in passing. It is told by a sentence.
class ScratchError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A folder for this process alone, below the folder that the environment variable TMPDIR names,
/// else below /tmp. It is removed with all that is in it at the end.
class PrivateFolder {
public:
    /// @throws ScratchError with a sentence that says where it cannot be made, and why. A path that
    /// the client would read as another one is no place for it.
    PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    ~PrivateFolder();

    /// Absolute, and readable by the client.
    const std::filesystem::path& path() const noexcept { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace marrowpress
