#include "cli/file_replacement.h"

#include <cerrno>
#include <fstream>
#include <system_error>

#include "cli/file_failure.h"
#include "cli/new_file.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

void writeInPlace(const fs::path& path, std::string_view text) {
    errno = 0;
    std::ofstream out(path, std::ios::binary);
    out << text;
    out.close();
    if (!out) {
        throw FileFailure::ofLastCall(FileAction::kWrite, path.string());
    }
}

}  // namespace

void replaceFile(const fs::path& path, std::string_view text) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        writeInPlace(path, text);
        return;
    }
    // A link stays, and what it leads to is replaced.
    const fs::path file = fs::absolute(fs::exists(status) ? fs::canonical(path) : path);
    NewFile successor(passingPath(file.parent_path()), path);
    successor.write(text);
    successor.close();
    successor.replace(file);
}

}  // namespace marrowpress
