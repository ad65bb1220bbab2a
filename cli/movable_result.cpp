#include "cli/movable_result.h"

#include <algorithm>
#include <utility>

#include "cli/file_place.h"
#include "cli/media_copies.h"
#include "cli/relative_references.h"
#include "cli/removal_on_signal.h"
#include "host/utf8.h"
#include "marrowpress/output_names.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr const char* kArgument = "--copy-media";

/// `path` and the folders that it is in, the uppermost last.
std::vector<fs::path> withFoldersAbove(fs::path path) {
    std::vector<fs::path> folders;
    for (; path.has_relative_path(); path = path.parent_path()) {
        folders.push_back(path);
    }
    return folders;
}

/// Whether the run may write a file at `path`.
bool isOutput(const fs::path& path, const std::vector<NamedPath>& outputs) {
    return std::any_of(outputs.begin(), outputs.end(), [&path](const NamedPath& output) {
        return haveOnePlace(path, output.path);
    });
}

/// Why the folder can't be that of the copies, whether it is there or not.
std::optional<std::string> findCopiesFault(const PublishOptions& options, const PublishPaths& paths,
                                           const fs::path& folder) {
    const std::string name = kArgument + (": " + *options.mediaFolder);
    if (!isValidUtf8(folder.string())) {
        return std::string(kArgument) + ": the path is not UTF-8";
    }
    const std::vector<NamedPath> outputs = outputsOf(options, paths);
    for (const fs::path& path : withFoldersAbove(folder)) {
        if (isOutput(path, outputs)) {
            return name + " is what the run writes for --output; choose another folder";
        }
        if (isFlatBook(options) && path.extension() == kComponentExtension &&
            !fs::is_directory(path)) {
            return name +
                   " has the name of a component, which the run may write; choose another "
                   "folder";
        }
    }
    return std::nullopt;
}

}  // namespace

MovableResult::MovableResult(const PublishOptions& options, const PublishPaths& paths,
                             ResultPlace place)
    : isWanted_(options.isRelative || options.mediaFolder),
      sources_(paths.map.parent_path()),
      place_(std::move(place)) {
    if (options.mediaFolder) {
        openCopies(options, paths);
    }
}

void MovableResult::openCopies(const PublishOptions& options, const PublishPaths& paths) {
    copiesPath_ = (place_.folder / *options.mediaFolder).lexically_normal();
    if (!copiesPath_.has_filename()) {
        copiesPath_ = copiesPath_.parent_path();
    }
    fault_ = findCopiesFault(options, paths, copiesPath_);
    if (!fault_) {
        copiesFolder_ =
            std::make_unique<OutputFolder>(copiesPath_, *options.mediaFolder, kArgument);
        fault_ = copiesFolder_->fault();
    }
}

std::vector<std::string> MovableResult::make(const std::vector<std::string>& files) const {
    std::vector<std::unique_ptr<RemovalOnSignal>> unfinished;
    unfinished.reserve(files.size());
    for (const std::string& file : files) {
        unfinished.push_back(std::make_unique<RemovalOnSignal>(file, Removal::kFile));
    }
    MediaCopies copies(copiesPath_);
    const RelativeReferences references(sources_, copiesPath_.empty() ? nullptr : &copies);
    for (std::size_t index = 0; index < files.size(); ++index) {
        const fs::path folder =
            place_.isOneFile ? place_.folder : fs::path(files[index]).parent_path();
        references.rewriteFile(files[index], folder.string());
        unfinished[index].reset();
    }
    return copies.paths();
}

}  // namespace marrowpress
