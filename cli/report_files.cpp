#include "cli/report_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>

#include "cli/file_place.h"
#include "cli/output_folder.h"
#include "marrowpress/output_names.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

std::string nameOf(const NamedPath& report) {
    return report.argument + ": " + report.shown;
}

/// Why there can be no file at the path, as far as its folder is concerned.
std::optional<std::string> findFolderFault(const NamedPath& report, const RunFiles& files) {
    std::error_code ignored;
    const fs::path folder = report.path.parent_path();
    if (files.madeFolders.contains(folder.lexically_normal())) {
        return std::nullopt;
    }
    const std::string shown = shownFolderOf(report.shown);
    if (!fs::is_directory(folder, ignored)) {
        return report.argument + ": there is no folder " + shown;
    }
    if (const std::error_code error = findWriteError(folder)) {
        return report.argument + ": cannot write to " + shown + ": " + error.message();
    }
    return std::nullopt;
}

/// Whether what is at the path begins like a document or an image, which topics may refer to: what
/// a run reads besides its arguments is not known before it.
bool isSourceLike(const fs::path& path) {
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored)) {
        return false;
    }
    constexpr std::size_t kStartSize = 512;
    std::ifstream file(path, std::ios::binary);
    std::string start(kStartSize, ' ');
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(file.gcount()));
    const bool isXml = start.find_first_not_of(" \t\r\n\xEF\xBB\xBF") == start.find('<') &&
                       start.find('<') != std::string::npos;
    const bool isOwn =
        start.find("<testsuite") != std::string::npos ||
        start.find("name=\"generator\" content=\"marrowpress\"") != std::string::npos;
    return (isXml && !isOwn) || start.find('\0') != std::string::npos;
}

std::optional<std::string> findPlaceFault(const NamedPath& report, const RunFiles& files) {
    std::error_code ignored;
    const fs::file_status status = fs::status(report.path, ignored);
    if (fs::is_directory(status) || !report.path.has_filename()) {
        return nameOf(report) + " is a folder";
    }
    if (!fs::exists(status)) {
        if (fs::is_symlink(report.path, ignored)) {
            return nameOf(report) + " is a symbolic link to nothing";
        }
        return findFolderFault(report, files);
    }
    if (faccessat(AT_FDCWD, report.path.c_str(), W_OK, AT_EACCESS) != 0) {
        return report.argument + ": cannot write to " + report.shown + ": " +
               std::generic_category().message(errno);
    }
    return std::nullopt;
}

/// The one of `others` that is the same file; null when none is.
const NamedPath* findSame(const NamedPath& report, const std::vector<NamedPath>& others) {
    const auto found = std::find_if(
        others.begin(), others.end(),
        [&report](const NamedPath& other) { return haveOnePlace(report.path, other.path); });
    return found == others.end() ? nullptr : &*found;
}

bool isComponentName(const std::string& name) {
    return name.ends_with(kComponentExtension) ||
           name.ends_with(std::string(kComponentExtension) + std::string(kAsideSuffix));
}

std::optional<std::string> findRunFault(const NamedPath& report, const RunFiles& files) {
    constexpr const char* kRemedy = "; choose another file";
    if (const NamedPath* const input = findSame(report, files.inputs)) {
        return nameOf(report) + " is what the run reads as " + input->argument + kRemedy;
    }
    if (const NamedPath* const output = findSame(report, files.outputs)) {
        return nameOf(report) + " is what the run writes for " + output->argument + kRemedy;
    }
    if (files.hasComponents && isComponentName(report.path.filename().string())) {
        return nameOf(report) + " has the name of a component, which the run may write" + kRemedy;
    }
    return std::nullopt;
}

}  // namespace

NamedPath namedPath(const std::string& argument, const std::string& given) {
    return {argument, given, fs::absolute(given)};
}

std::optional<std::string> findReportFault(const std::vector<NamedPath>& reports,
                                           const RunFiles& files) {
    std::vector<NamedPath> earlier;
    for (const NamedPath& report : reports) {
        if (std::optional<std::string> fault = findPlaceFault(report, files)) {
            return fault;
        }
        if (std::optional<std::string> fault = findRunFault(report, files)) {
            return fault;
        }
        if (const NamedPath* const same = findSame(report, earlier)) {
            return nameOf(report) + " is also the file of " + same->argument +
                   "; choose another file";
        }
        if (isSourceLike(report.path)) {
            return nameOf(report) + " is there already, and no report; choose another file";
        }
        std::error_code ignored;
        if (!fs::is_character_file(report.path, ignored)) {
            earlier.push_back(report);
        }
    }
    return std::nullopt;
}

}  // namespace marrowpress
