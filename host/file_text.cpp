#include "host/file_text.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace marrowpress {
namespace {

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

[[noreturn]] void throwUnreadable(const std::string& path, int error) {
    throw std::system_error(error, std::generic_category(), path);
}

}  // namespace

std::string readFile(const std::string& path) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rbe"));
    if (!file) throwUnreadable(path, errno);

    std::string text;
    std::array<char, 65536> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
        text.append(block.data(), count);
    }
    if (std::ferror(file.get()) != 0) throwUnreadable(path, errno);
    return text;
}

}  // namespace marrowpress
