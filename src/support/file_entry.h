#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

namespace marrowpress {

/// A name in a folder, as the file system has it: what a file is removed or replaced by, whatever
/// way its path is spelt and whatever links lead to the folder.
struct FileEntry {
    dev_t folderDevice = 0;
    ino_t folderInode = 0;
    std::string name;
    /// Of what stands there, a link itself and not what it leads to; none where nothing does.
    std::optional<struct stat> status = {};
};

/// The entry that `path` names; none when its folder can't be looked at.
std::optional<FileEntry> fileEntry(std::u16string_view path);

/// The entry that is read where `path` is: that of `fileEntry`, with the status of what a link
/// leads to.
std::optional<FileEntry> readEntry(std::u16string_view path);

/// Whether replacing the one would replace the other: they are one name in one folder, or two
/// spellings of the only name of one file. No entry is one with none.
bool isOneEntry(const std::optional<FileEntry>& one, const std::optional<FileEntry>& other);

}  // namespace marrowpress
