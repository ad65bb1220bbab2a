#include "cli/publish_paths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

#include "cli/public_ids.h"
#include "cli/written_composite.h"
#include "host/utf8.h"
#include "marrowpress/output_names.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// A file that the run reads, with the argument that names it.
struct Source {
    std::string argument;
    fs::path path;
};

fs::path besideWithSuffix(fs::path path) {
    path += kAsideSuffix;
    return path;
}

bool isDanglingLink(const fs::path& path) {
    std::error_code ignored;
    return fs::is_symlink(path, ignored) && !fs::exists(path, ignored);
}

fs::path toClientPath(const std::string& text) {
    std::string path = fs::absolute(text).string();
    std::replace(path.begin(), path.end(), '\\', '/');
    return fs::path(path).lexically_normal();
}

fs::path withoutLastSeparator(const fs::path& path) {
    return path.has_filename() ? path : path.parent_path();
}

bool isFlatBook(const PublishOptions& options) {
    return options.format == OutputFormat::kFlatBook;
}

/// Where the key space document stands while the run lasts.
fs::path keySpacePath(const PublishOptions& options, const fs::path& output) {
    return (isFlatBook(options) ? output : output.parent_path()) / kKeySpaceDocName;
}

std::vector<Source> sourcesOf(const PublishOptions& options, const PublishPaths& paths) {
    std::vector<Source> sources{{"MAP", paths.map}};
    if (paths.filter) {
        sources.push_back({"--filter", *paths.filter});
    }
    for (const fs::path& catalog : catalogFiles(options.catalogs)) {
        sources.push_back({options.catalogs.empty() ? "default catalog" : "--catalog", catalog});
    }
    return sources;
}

std::optional<std::string> findTextFault(const PublishOptions& options, const PublishPaths& paths) {
    const auto isBad = [](const std::string& text) { return !isValidUtf8(text); };
    if (isBad(paths.map.string())) {
        return "MAP: the path is not UTF-8";
    }
    if (isBad(paths.output.string())) {
        return "--output: the path is not UTF-8";
    }
    if (paths.filter && isBad(paths.filter->string())) {
        return "--filter: the path is not UTF-8";
    }
    if (isBad(options.compositeDtd)) {
        return "--composite-dtd: the text is not UTF-8";
    }
    if (isBad(options.keySpaceDtd)) {
        return "--keyspace-dtd: the text is not UTF-8";
    }
    return std::nullopt;
}

/// Why `path` cannot be read as a file; empty when it can.
std::optional<std::string> findReadFault(const fs::path& path) {
    // Without blocking: the path may be a FIFO that nobody writes to.
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) {
        return std::generic_category().message(errno);
    }
    struct stat status {};
    const bool isFile = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    close(descriptor);
    return isFile ? std::nullopt : std::optional<std::string>("not a regular file");
}

std::optional<std::string> findFolderFault(const PublishOptions& options, const fs::path& output) {
    const std::string name = "--output: " + options.output;
    std::error_code ignored;
    const fs::file_status status = fs::status(output, ignored);
    if (fs::is_directory(status)) {
        return std::nullopt;
    }
    if (fs::exists(status)) {
        return name + " is no folder, and a flat book needs one";
    }
    return name + ": there is no such folder; create it first";
}

std::optional<std::string> findOutputFault(const PublishOptions& options, const fs::path& output) {
    if (isFlatBook(options)) {
        return findFolderFault(options, output);
    }
    const std::string name = "--output: " + options.output;
    std::error_code error;
    const fs::file_status status = fs::status(output, error);
    if (fs::is_directory(status) || !output.has_filename()) {
        return name + " is a folder";
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        return name + " is not a regular file";
    }
    if (!fs::is_directory(output.parent_path(), error)) {
        return name + ": there is no folder " + output.parent_path().string();
    }
    for (const fs::path& reserved :
         {fs::path(kKeySpaceDocName), besideWithSuffix(kKeySpaceDocName)}) {
        if (output.filename() != reserved) {
            continue;
        }
        return name + ": the run itself uses the name " + reserved.string() +
               " in the output's folder, and removes it";
    }
    return std::nullopt;
}

/// Why the run could not write and move aside what it writes, though the folder is there.
std::optional<std::string> findPlaceFault(const PublishOptions& options, const fs::path& output) {
    const std::string name = "--output: " + options.output;
    const fs::path keySpace = keySpacePath(options, output);
    if (!isFlatBook(options)) {
        std::error_code error;
        static_cast<void>(fs::symlink_status(besideWithSuffix(output), error));
        if (error == std::errc::filename_too_long) {
            return name + ": the name is too long; " + std::string(kAsideSuffix) +
                   " must fit behind it";
        }
        if (isDanglingLink(output)) {
            return name + " is a symbolic link to nothing";
        }
    }
    if (!isDanglingLink(keySpace)) {
        return std::nullopt;
    }
    return name + ": " + keySpace.string() +
           ", which the run writes, is a symbolic link to nothing";
}

/// Why the file that stands at the output may not be replaced.
std::optional<std::string> findReplaceFault(const PublishOptions& options, const fs::path& output) {
    std::error_code ignored;
    if (isFlatBook(options) || !fs::exists(output, ignored) || isWrittenComposite(output)) {
        return std::nullopt;
    }
    return "--output: " + options.output +
           " is there already, and no composite of an earlier run: the run would delete it; "
           "choose another output";
}

bool isSameFile(const fs::path& left, const fs::path& right) {
    std::error_code ignored;
    return left == right || fs::equivalent(left, right, ignored);
}

std::optional<std::string> findLossFault(const PublishOptions& options, const PublishPaths& paths) {
    const fs::path& output = paths.output;
    const fs::path keySpace = keySpacePath(options, output);
    std::vector<fs::path> lost{keySpace, besideWithSuffix(keySpace)};
    if (!isFlatBook(options)) {
        lost.insert(lost.begin(), {output, besideWithSuffix(output)});
    }
    for (const Source& source : sourcesOf(options, paths)) {
        const std::string name = source.path.filename().string();
        if (isFlatBook(options) &&
            (name.ends_with(kComponentExtension) ||
             name.ends_with(besideWithSuffix(kComponentExtension).string()))) {
            return source.argument + ": " + source.path.string() +
                   " has the name of a component, which the run may write over it; rename it";
        }
        for (const fs::path& path : lost) {
            if (!isSameFile(source.path, path)) {
                continue;
            }
            std::string fault = source.argument + ": the run would overwrite or remove ";
            fault += source.path.string();
            if (path == output) {
                fault += ", which is also the output";
            }
            fault += "; choose another output";
            return fault;
        }
    }
    return std::nullopt;
}

}  // namespace

PublishPaths resolvePublishPaths(const PublishOptions& options) {
    PublishPaths paths{toClientPath(options.map), toClientPath(options.output), std::nullopt};
    if (!options.filters.empty()) {
        paths.filter = toClientPath(options.filters.front());
    }
    if (isFlatBook(options)) {
        paths.output = withoutLastSeparator(paths.output);
    }
    return paths;
}

std::optional<std::string> findPublishFault(const PublishOptions& options,
                                            const PublishPaths& paths) {
    if (std::optional<std::string> fault = findTextFault(options, paths)) {
        return fault;
    }
    if (const auto reason = findReadFault(paths.map)) {
        return "MAP: cannot read " + options.map + ": " + *reason;
    }
    if (options.filters.size() > 1) {
        return "--filter: more than one is given";
    }
    if (paths.filter) {
        if (const auto reason = findReadFault(*paths.filter)) {
            return "--filter: cannot read " + options.filters.front() + ": " + *reason;
        }
    }
    if (std::optional<std::string> fault = findOutputFault(options, paths.output)) {
        return fault;
    }
    if (std::optional<std::string> fault = findPlaceFault(options, paths.output)) {
        return fault;
    }
    if (std::optional<std::string> fault = findLossFault(options, paths)) {
        return fault;
    }
    return findReplaceFault(options, paths.output);
}

}  // namespace marrowpress
