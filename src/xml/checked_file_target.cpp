#include "xml/checked_file_target.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "support/paths.h"

namespace marrowpress {
namespace {

constexpr std::size_t kHeldBackAtMost = 65536;

[[noreturn]] void throwLastError(const char* operation) {
    throw std::system_error(errno, std::generic_category(), operation);
}

}  // namespace

CheckedFileFormatTarget::CheckedFileFormatTarget(const std::u16string& path)
    // Not blocking, so that a pipe without a reader is an error and not a wait.
    : descriptor_(::open(nativePath(path).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK,
                         S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH)) {
    if (descriptor_ < 0) {
        throwLastError("open");
    }
    struct stat status {};
    const bool isRegular = ::fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
    if (!isRegular || ::ftruncate(descriptor_, 0) != 0) {
        const int error = isRegular ? errno : EINVAL;
        ::close(descriptor_);
        throw std::system_error(error, std::generic_category(), "open");
    }
    heldBack_.reserve(kHeldBackAtMost);
}

CheckedFileFormatTarget::~CheckedFileFormatTarget() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
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
    if (::close(std::exchange(descriptor_, -1)) != 0) {
        throwLastError("close");
    }
}

void CheckedFileFormatTarget::writeHeldBack() {
    std::size_t written = 0;
    while (written < heldBack_.size()) {
        const ssize_t count =
            ::write(descriptor_, heldBack_.data() + written, heldBack_.size() - written);
        if (count < 0 && errno != EINTR) {
            throwLastError("write");
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    heldBack_.clear();
}

}  // namespace marrowpress
