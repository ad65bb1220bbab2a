#include "host/file_text.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include "host/close_file.h"

namespace marrowpress {
namespace {

[[noreturn]] void throwUnreadable(const std::string& what, int error) {
    throw std::system_error(error, std::generic_category(), what);
}

/// The rest of `file`, which has `mostBytes` at most; `what` begins the text of the error.
std::string readAll(std::FILE& file, const std::string& what, std::size_t mostBytes) {
    std::string text;
    std::array<char, 65536> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), &file)) {
        if (count > mostBytes - text.size()) {
            throwUnreadable(what, EFBIG);
        }
        text.append(block.data(), count);
    }
    if (std::ferror(&file) != 0) {
        throwUnreadable(what, errno);
    }
    return text;
}

}  // namespace

std::string readFile(const std::string& path, std::size_t mostBytes) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rbe"));
    if (!file) {
        throwUnreadable(path, errno);
    }
    return readAll(*file, path, mostBytes);
}

std::string readStandardInput(std::size_t mostBytes) {
    return readAll(*stdin, "cannot read standard input", mostBytes);
}

}  // namespace marrowpress
