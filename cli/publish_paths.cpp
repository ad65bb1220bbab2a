#include "cli/publish_paths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/output_folder.h"
#include "host/utf8.h"
#include "marrowpress/output_names.h"
#include "runs/public_ids.h"
#include "runs/written_composite.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

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

/// Where the key space document stands while the run lasts.
fs::path keySpacePath(const RunOptions& options, const fs::path& output) {
    return (isFlatBook(options) ? output : output.parent_path()) / kKeySpaceDocName;
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
    std::error_code error;
    if (!isFlatBook(options)) {
        static_cast<void>(fs::symlink_status(besideWithSuffix(output), error));
        if (error == std::errc::filename_too_long) {
            return name + ": the name is too long; " + std::string(kAsideSuffix) +
                   " must fit behind it";
        }
        if (isDanglingLink(output)) {
            return name + " is a symbolic link to nothing";
        }
        if (fs::is_directory(besideWithSuffix(output), error)) {
            return name + ": " + besideWithSuffix(output).string() +
                   " is a folder, and the run needs that name for a while; choose another output";
        }
    }
    // Users don't know the names that a run uses in passing, and need not.
    for (const fs::path& used : {keySpace, besideWithSuffix(keySpace)}) {
        if (isDanglingLink(used) || fs::is_directory(used, error)) {
            return name +
                   ": a folder, or a symbolic link to nothing, is in the way of what the run "
                   "writes for a while; choose another output folder";
        }
    }
    return std::nullopt;
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

/// Why nothing of the run would come upon the source by its name alone; empty for all others.
std::optional<std::string> findComponentNameFault(const NamedPath& source) {
    const std::string name = source.path.filename().string();
    if (!name.ends_with(kComponentExtension) &&
        !name.ends_with(besideWithSuffix(kComponentExtension).string())) {
        return std::nullopt;
    }
    return source.argument + ": " + source.path.string() +
           " has the name of a component, which the run may write over it; rename it";
}

std::optional<std::string> findLossFault(const PublishOptions& options, const PublishPaths& paths) {
    const std::vector<NamedPath> lost = outputsOf(options, paths);
    for (const NamedPath& source : sourcesOf(options, paths)) {
        if (isFlatBook(options)) {
            if (std::optional<std::string> fault = findComponentNameFault(source)) {
                return fault;
            }
        }
        const auto found = std::find_if(lost.begin(), lost.end(), [&](const NamedPath& output) {
            return isSameFile(source.path, output.path);
        });
        if (found == lost.end()) {
            continue;
        }
        std::string fault = source.argument + ": the run would overwrite or remove ";
        fault += source.path.string();
        if (found->path == paths.output) {
            fault += ", which is also the output";
        }
        fault += "; choose another output";
        return fault;
    }
    return std::nullopt;
}

}  // namespace

PublishPaths resolvePublishPaths(const RunOptions& options) {
    PublishPaths paths{toClientPath(options.map), {}, {}};
    // What is only checked need not have an output.
    if (!options.output.empty()) {
        paths.output = toClientPath(options.output);
    }
    for (const std::string& filter : options.filters) {
        paths.filters.push_back(toClientPath(filter));
    }
    if (isFlatBook(options)) {
        paths.output = withoutLastSeparator(paths.output);
    }
    return paths;
}

std::optional<std::string> findPublishFault(const PublishOptions& options,
                                            const PublishPaths& paths) {
    if (std::optional<std::string> fault = findTextFault(paths)) {
        return fault;
    }
    if (!isValidUtf8(options.compositeDtd)) {
        return "--composite-dtd: the text is not UTF-8";
    }
    if (!isValidUtf8(options.keySpaceDtd)) {
        return "--keyspace-dtd: the text is not UTF-8";
    }
    if (const auto reason = findReadFault(paths.map)) {
        return "MAP: cannot read " + options.map + ": " + *reason;
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

std::optional<std::string> findTextFault(const PublishPaths& paths) {
    if (!isValidUtf8(paths.map.string())) {
        return "MAP: the path is not UTF-8";
    }
    if (!isValidUtf8(paths.output.string())) {
        return "--output: the path is not UTF-8";
    }
    const bool areFiltersValid =
        std::all_of(paths.filters.begin(), paths.filters.end(),
                    [](const fs::path& filter) { return isValidUtf8(filter.string()); });
    return areFiltersValid ? std::nullopt
                           : std::optional<std::string>("--filter: the path is not UTF-8");
}

std::vector<NamedPath> filtersOf(const RunOptions& options, const PublishPaths& paths) {
    std::vector<NamedPath> filters;
    for (std::size_t index = 0; index < paths.filters.size(); ++index) {
        filters.push_back({"--filter", options.filters[index], paths.filters[index]});
    }
    return filters;
}

std::vector<NamedPath> sourcesOf(const RunOptions& options, const PublishPaths& paths) {
    std::vector<NamedPath> sources{{"MAP", options.map, paths.map}};
    for (NamedPath& filter : filtersOf(options, paths)) {
        sources.push_back(std::move(filter));
    }
    if (options.diagnostics.baseline) {
        sources.push_back(namedPath("--baseline", *options.diagnostics.baseline));
    }
    const std::string argument = options.catalogs.empty() ? "default catalog" : "--catalog";
    for (const fs::path& catalog : catalogFiles(options.catalogs)) {
        sources.push_back({argument, catalog.string(), catalog});
    }
    return sources;
}

NamedPath outputFolderOf(const RunOptions& options, const PublishPaths& paths) {
    return isFlatBook(options)
               ? NamedPath{"--output", options.output, paths.output}
               : NamedPath{"--output", shownFolderOf(options.output), paths.output.parent_path()};
}

std::vector<NamedPath> outputsOf(const RunOptions& options, const PublishPaths& paths) {
    std::vector<fs::path> files;
    if (!isFlatBook(options)) {
        files = {paths.output, besideWithSuffix(paths.output)};
    }
    const fs::path keySpace = keySpacePath(options, paths.output);
    files.push_back(keySpace);
    files.push_back(besideWithSuffix(keySpace));
    std::vector<NamedPath> outputs;
    outputs.reserve(files.size());
    for (const fs::path& file : files) {
        outputs.push_back({"--output", options.output, file});
    }
    return outputs;
}

}  // namespace marrowpress
