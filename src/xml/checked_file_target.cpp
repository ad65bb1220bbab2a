#include "xml/checked_file_target.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "support/paths.h"

namespace marrowpress {
namespace {

constexpr std::size_t kHeldBackAtMost = 65536;

[[noreturn]] void throwLastError(const char* operation) {
    throw std::system_error(errno, std::generic_category(), operation);
}

/// Throws where the file at `name` must not be written.
void requireWritable(const char* name) {
    const FileDescriptor descriptor(::open(name, O_WRONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor) {
        throwLastError("open");
    }
}

/// Removes the name of an old file, or of a link, whose target stays as it is.
void takeAway(const char* name) {
    struct stat status {};
    if (::lstat(name, &status) != 0) {
        return;  // what else is wrong shows when the file is made
    }
    if (S_ISREG(status.st_mode)) {
        requireWritable(name);
    } else if (!S_ISLNK(status.st_mode)) {
        throw std::system_error(S_ISDIR(status.st_mode) ? EISDIR : EINVAL, std::generic_category(),
                                "open");
    }
    if (::unlink(name) != 0) {
        throwLastError("unlink");
    }
}

}  // namespace

CheckedFileFormatTarget::CheckedFileFormatTarget(const std::u16string& path,
                                                 std::optional<mode_t> mode) {
    const std::string name = nativePath(path).string();
    takeAway(name.c_str());
    // Of this run alone: what came into the place meanwhile is not written through.
    constexpr mode_t kUsual = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    descriptor_ = FileDescriptor(::open(
        name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode.value_or(kUsual)));
    if (!descriptor_) {
        throwLastError("open");
    }
    // The process may give new files fewer rights than the old one had.
    if (mode && ::fchmod(descriptor_.get(), *mode) != 0) {
        throwLastError("chmod");
    }
    heldBack_.reserve(kHeldBackAtMost);
}

void CheckedFileFormatTarget::writeChars(const XMLByte* bytes, XMLSize_t count,
                                         xercesc::XMLFormatter* /*formatter*/) {
    if (heldBack_.size() + count > kHeldBackAtMost) {
        writeHeldBack();
    }
    heldBack_.insert(heldBack_.end(), bytes, bytes + count);
}

void CheckedFileFormatTarget::close() {
    writeHeldBack();
    if (::close(descriptor_.release()) != 0) {
        throwLastError("close");
    }
}

void CheckedFileFormatTarget::writeHeldBack() {
    std::size_t written = 0;
    while (written < heldBack_.size()) {
        const ssize_t count =
            ::write(descriptor_.get(), heldBack_.data() + written, heldBack_.size() - written);
        if (count == 0) {
            // Neither bytes nor a reason: nothing says that it would ever end.
            throw std::system_error(EIO, std::generic_category(), "write");
        }
        if (count < 0 && errno != EINTR) {
            throwLastError("write");
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    heldBack_.clear();
}

}  // namespace marrowpress
