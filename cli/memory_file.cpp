#include "cli/memory_file.h"

#include <sys/mman.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace marrowpress {

MemoryFile::MemoryFile(const char* name) : descriptor_(memfd_create(name, MFD_CLOEXEC)) {
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot start a job");
    }
}

MemoryFile::~MemoryFile() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

void MemoryFile::fill(const std::string& text) const {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = write(descriptor_, text.data() + done, text.size() - done);
        if (written <= 0) {
            throw std::system_error(errno, std::generic_category(), "cannot start a job");
        }
        done += static_cast<std::size_t>(written);
    }
    lseek(descriptor_, 0, SEEK_SET);
}

std::string MemoryFile::text() const {
    const off_t size = lseek(descriptor_, 0, SEEK_END);
    std::string text(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t got =
            pread(descriptor_, text.data() + done, text.size() - done, static_cast<off_t>(done));
        if (got <= 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    text.resize(done);
    return text;
}

void tell(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace marrowpress
