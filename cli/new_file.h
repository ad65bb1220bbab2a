#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "cli/removal_on_signal.h"

namespace marrowpress {

/// A path in `folder` that nobody else uses, for a file that is not complete yet.
std::filesystem::path passingPath(const std::filesystem::path& folder);

/// A file that is written under a name of its own, and gets its place when it is complete. Until
/// then it is removed at the end, and by a signal.
class NewFile {
public:
    /// @param path  Absolute. Nothing may be there.
    /// @param wanted  The place that it is written for, which failures name.
    /// @param mode  Its permission bits; else the usual ones.
    /// @throws FileFailure when it can't be made.
    NewFile(std::filesystem::path path, std::filesystem::path wanted,
            std::optional<mode_t> mode = std::nullopt);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    /// @throws FileFailure when the bytes, or earlier ones, can't be written.
    void write(std::string_view bytes);

    /// Writes what is still held back, and ends the file; nothing can be written then.
    ///
    /// @throws FileFailure
    void close();

    /// Gives a file that was ended the place of the one at `path`, on the same file system.
    ///
    /// @throws FileFailure
    void replace(const std::filesystem::path& path);

    /// Moves a file that was ended to `path`, on the same file system; false when something is
    /// there.
    ///
    /// @throws FileFailure
    [[nodiscard]] bool moveTo(const std::filesystem::path& path);

private:
    void setMode(mode_t mode);
    void flush();
    void remove();

    std::filesystem::path path_;
    std::filesystem::path wanted_;
    RemovalOnSignal removal_;
    int descriptor_ = -1;
    bool isThere_ = false;
    std::string heldBack_;
};

}  // namespace marrowpress
