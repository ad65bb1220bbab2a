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

[[noreturn]] void throwUnreadable(const std::string& what, int error) {
    throw std::system_error(error, std::generic_category(), what);
}

/// The rest of `file`; `what` begins the text of the error.
std::string readAll(std::FILE& file, const std::string& what) {
    std::string text;
    std::array<char, 65536> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), &file)) {
        text.append(block.data(), count);
    }
    if (std::ferror(&file) != 0) {
        throwUnreadable(what, errno);
    }
    return text;
}

}  // namespace

std::string readFile(const std::string& path) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rbe"));
    if (!file) {
        throwUnreadable(path, errno);
    }
    return readAll(*file, path);
}

std::string readStandardInput() {
    return readAll(*stdin, "cannot read standard input");
}

}  // namespace marrowpress
