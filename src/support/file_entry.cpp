#include "support/file_entry.h"

#include "support/paths.h"
#include "support/text.h"

namespace marrowpress {
namespace {

using Stat = int (*)(const char*, struct stat*);

std::optional<FileEntry> entryBy(std::u16string_view path, Stat readStatus) {
    const std::u16string_view folder = parentPath(path);
    const std::string folderName = folder.empty() ? "." : nativePath(folder).string();
    struct stat folderStatus {};
    FileEntry entry{.name = toUtf8(pathFileName(path))};
    if (entry.name.empty() || ::stat(folderName.c_str(), &folderStatus) != 0) {
        return std::nullopt;
    }
    entry.folderDevice = folderStatus.st_dev;
    entry.folderInode = folderStatus.st_ino;
    struct stat status {};
    if (readStatus(nativePath(path).c_str(), &status) == 0) {
        entry.status = status;
    }
    return entry;
}

}  // namespace

std::optional<FileEntry> fileEntry(std::u16string_view path) {
    return entryBy(path, &::lstat);
}

std::optional<FileEntry> readEntry(std::u16string_view path) {
    return entryBy(path, &::stat);
}

bool isOneEntry(const std::optional<FileEntry>& one, const std::optional<FileEntry>& other) {
    if (!one || !other) {
        return false;
    }
    const bool isOneName = one->folderDevice == other->folderDevice &&
                           one->folderInode == other->folderInode && one->name == other->name;
    // A file that has one name has two spellings of it where the file system ignores letter case.
    const bool isOnlyName =
        one->status && other->status && one->status->st_dev == other->status->st_dev &&
        one->status->st_ino == other->status->st_ino && one->status->st_nlink == 1;
    return isOneName || isOnlyName;
}

}  // namespace marrowpress
