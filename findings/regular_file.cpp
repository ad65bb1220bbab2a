#include "findings/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace marrowpress {
namespace {

std::string systemReason() {
    return std::generic_category().message(errno);
}

bool isRegular(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

RegularFile::RegularFile(const std::string& path)
    : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
    if (!isOpen()) {
        fault_ = systemReason();
        return;
    }
    if (!isRegular(descriptor_)) {
        close();
        fault_ = "not a regular file";
    }
}

RegularFile::~RegularFile() {
    close();
}

std::optional<std::string> RegularFile::read() {
    std::string text;
    std::array<char, 65536> block;
    while (true) {
        const ssize_t count = ::read(descriptor_, block.data(), block.size());
        if (count < 0) {
            fault_ = systemReason();
            return std::nullopt;
        }
        if (count == 0) {
            return text;
        }
        text.append(block.data(), static_cast<std::size_t>(count));
    }
}

void RegularFile::close() noexcept {
    if (isOpen()) {
        ::close(descriptor_);
        descriptor_ = -1;
    }
}

}  // namespace marrowpress
