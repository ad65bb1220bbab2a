#include "cli/output_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr const char* kArgument = "--output: ";

/// The folders on the way to `path` that are not there, the uppermost first.
std::vector<fs::path> missingFolders(const fs::path& path) {
    std::vector<fs::path> missing;
    std::error_code ignored;
    for (fs::path folder = path; !fs::exists(folder, ignored); folder = folder.parent_path()) {
        missing.push_back(folder);
        if (!folder.has_relative_path()) {
            break;
        }
    }
    std::reverse(missing.begin(), missing.end());
    return missing;
}

/// Nothing shows rights better than the attempt: those of root may end where no mode says so. The
/// file has no name, so it is gone with its handle.
int tryFile(const fs::path& folder) {
    constexpr mode_t kOwnerOnly = 0600;
    const int file = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kOwnerOnly);
    if (file < 0) {
        return errno;
    }
    close(file);
    return 0;
}

}  // namespace

std::error_code findWriteError(const fs::path& folder) {
    const bool isOpen = faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
    const int error = isOpen ? tryFile(folder) : errno;
    // Not every file system knows files without names.
    const bool isRefused = error == EACCES || error == EPERM || error == EROFS;
    return {isRefused ? error : 0, std::generic_category()};
}

std::string shownFolderOf(const std::string& given) {
    const std::string folder = fs::path(given).parent_path().string();
    return folder.empty() ? "the current folder" : folder;
}

OutputFolder::OutputFolder(const fs::path& path, const std::string& shown) {
    if (const std::error_code error = make(path)) {
        fault_ = kArgument + ("cannot make the folder " + shown) + ": " + error.message();
    } else if (!fs::is_directory(path)) {
        fault_ = kArgument + shown + " is no folder";
    } else if (const std::error_code refusal = findWriteError(path)) {
        fault_ = kArgument + ("cannot write to " + shown) + ": " + refusal.message();
    }
}

OutputFolder::~OutputFolder() {
    for (auto folder = made_.rbegin(); folder != made_.rend(); ++folder) {
        // What is not empty stays, and so does what it is in.
        if (rmdir(folder->c_str()) != 0) {
            return;
        }
    }
}

std::error_code OutputFolder::make(const fs::path& path) {
    for (const fs::path& folder : missingFolders(path)) {
        std::error_code error;
        if (fs::create_directory(folder, error)) {
            made_.push_back(folder);
        } else if (error) {
            return error;
        }
    }
    return {};
}

}  // namespace marrowpress
