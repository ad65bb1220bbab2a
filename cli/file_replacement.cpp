#include "cli/file_replacement.h"

#include <cerrno>
#include <fstream>
#include <system_error>

#include "cli/removal_on_signal.h"
#include "marrowpress/output_names.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

std::optional<std::string> write(const fs::path& path, std::string_view text) {
    errno = 0;
    std::ofstream out(path, std::ios::binary);
    out << text;
    out.close();
    if (out) {
        return std::nullopt;
    }
    return errno == 0 ? std::string() : std::generic_category().message(errno);
}

}  // namespace

std::optional<std::string> replaceFile(const fs::path& path, std::string_view text) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        return write(path, text);
    }
    // A link stays, and what it leads to is replaced.
    const fs::path file = fs::absolute(fs::exists(status) ? fs::canonical(path) : path);
    fs::path aside = file;
    aside += kAsideSuffix;
    const RemovalOnSignal removal(aside.string(), Removal::kFile);
    std::optional<std::string> failure = write(aside, text);
    if (!failure) {
        fs::rename(aside, file, error);
        failure = error ? std::optional(error.message()) : std::nullopt;
    }
    if (failure) {
        fs::remove(aside, error);
    }
    return failure;
}

}  // namespace marrowpress
