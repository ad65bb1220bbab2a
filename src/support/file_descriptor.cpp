#include "support/file_descriptor.h"

#include <unistd.h>

#include <utility>

namespace marrowpress {

FileDescriptor::FileDescriptor(FileDescriptor&& other) noexcept : number_(other.release()) {}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
}

FileDescriptor::~FileDescriptor() {
    if (number_ >= 0) {
        ::close(number_);
    }
}

int FileDescriptor::release() noexcept {
    return std::exchange(number_, -1);
}

}  // namespace marrowpress
