#pragma once

#include <string_view>

#include "support/file_descriptor.h"

namespace marrowpress {

/// Keeps other runs out of a folder for as long as it lives: an advisory lock on the folder itself,
/// which leaves nothing behind, whatever ends the process. Where the file system knows no locks, or
/// the folder can't be opened, nothing is locked and nobody kept out.
class FolderLock {
public:
    /// An empty folder is the current one.
    explicit FolderLock(std::u16string_view folder);
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    /// Whether somebody else holds the lock, in this process or another.
    bool isTaken() const noexcept { return isTaken_; }

private:
    FileDescriptor descriptor_;
    bool isTaken_ = false;
};

}  // namespace marrowpress
