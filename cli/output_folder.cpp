#include "cli/output_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

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

/// Why the folders, of which each stands in the one before it, could not be made.
std::error_code findMakeError(const std::vector<fs::path>& missing) {
    if (missing.empty()) {
        return {};
    }
    std::error_code error;
    if (fs::is_symlink(fs::symlink_status(missing.front(), error))) {
        return std::make_error_code(std::errc::file_exists);  // it leads to nothing
    }
    if (error && error != std::errc::no_such_file_or_directory) {
        return error;
    }
    const fs::path above = missing.front().parent_path();
    if (const std::error_code refusal = findWriteError(above)) {
        return refusal;
    }
    const long longest = pathconf(above.c_str(), _PC_NAME_MAX);
    const bool isTooLong =
        longest > 0 && std::any_of(missing.begin(), missing.end(), [&](const fs::path& folder) {
            return folder.filename().native().size() > static_cast<std::size_t>(longest);
        });
    return isTooLong ? std::make_error_code(std::errc::filename_too_long) : std::error_code();
}

std::string cannotMake(const std::string& shown, const std::error_code& error) {
    return "cannot make the folder " + shown + ": " + error.message();
}

std::optional<std::string> findFaultOfExisting(const fs::path& path, const std::string& shown) {
    if (!fs::is_directory(path)) {
        return shown + " is no folder";
    }
    if (const std::error_code refusal = findWriteError(path)) {
        return "cannot write to " + shown + ": " + refusal.message();
    }
    return std::nullopt;
}

std::optional<std::string> withArgument(const std::string& argument,
                                        const std::optional<std::string>& fault) {
    return fault ? std::optional(argument + ": " + *fault) : std::nullopt;
}

}  // namespace

std::error_code findWriteError(const fs::path& folder) {
    const bool isOpen = faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
    const int error = isOpen ? tryFile(folder) : errno;
    // Not every file system knows files without names.
    const bool isRefused = error == EACCES || error == EPERM || error == EROFS;
    return {isRefused ? error : 0, std::generic_category()};
}

std::optional<std::string> findOutputFolderFault(const fs::path& path, const std::string& shown,
                                                 const std::string& argument) {
    std::error_code ignored;
    std::optional<std::string> fault;
    if (const std::error_code error = findMakeError(missingFolders(path))) {
        fault = cannotMake(shown, error);
    } else if (fs::exists(path, ignored)) {
        fault = findFaultOfExisting(path, shown);
    }
    return withArgument(argument, fault);
}

std::string shownFolderOf(const std::string& given) {
    const std::string folder = fs::path(given).parent_path().string();
    return folder.empty() ? "the current folder" : folder;
}

OutputFolder::OutputFolder(const fs::path& path, const std::string& shown,
                           const std::string& argument) {
    const std::error_code error = make(path);
    fault_ =
        withArgument(argument, error ? cannotMake(shown, error) : findFaultOfExisting(path, shown));
}

OutputFolder::~OutputFolder() {
    for (auto folder = made_.rbegin(); folder != made_.rend(); ++folder) {
        // What is not empty stays, and so does what it is in.
        if (rmdir(folder->path.c_str()) != 0) {
            return;
        }
    }
}

std::error_code OutputFolder::make(const fs::path& path) {
    for (const fs::path& folder : missingFolders(path)) {
        const HeldSignals held;
        std::error_code error;
        if (fs::create_directory(folder, error)) {
            made_.push_back({folder, std::make_unique<RemovalOnSignal>(folder.string(),
                                                                       Removal::kEmptyFolder)});
        } else if (error) {
            return error;
        }
    }
    return {};
}

}  // namespace marrowpress
