#include "cli/batch/placement.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "cli/publish_paths.h"
#include "marrowpress/output_names.h"
#include "runs/dependency_json.h"
#include "runs/dependency_list.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Whether a system identifier leads from the output's folder to a file, and so perhaps to no file,
/// or another one, from elsewhere.
bool leadsToFile(const fs::path& folder, const std::string& systemId) {
    std::error_code ignored;
    return !systemId.empty() && fs::path(systemId).is_relative() &&
           fs::exists(folder / systemId, ignored);
}

/// Whether what the file holds has no part in which components there are.
bool isOnlyRead(const ResultDependency& file) {
    return file.kind == nameOf(DependencyKind::kTopic) ||
           file.kind == nameOf(DependencyKind::kLink) ||
           file.kind == nameOf(DependencyKind::kImage);
}

std::string folderOf(const std::string& file) {
    std::error_code ignored;
    return fs::weakly_canonical(fs::path(file).parent_path(), ignored).string();
}

}  // namespace

bool needsItsPlace(const Job& job, const std::optional<RunResult>& earlier) {
    if (isFlatBook(job.options)) {
        return true;
    }
    const fs::path output = resolvePublishPaths(job.options).output;
    const fs::path folder = output.parent_path();
    if (leadsToFile(folder, job.options.compositeDtd) ||
        leadsToFile(folder, job.options.keySpaceDtd)) {
        return true;
    }
    const std::string keySpace = (folder / kKeySpaceDocName).string();
    return earlier && std::any_of(earlier->dependencies.begin(), earlier->dependencies.end(),
                                  [&](const ResultDependency& file) {
                                      return file.file == output || file.file == keySpace;
                                  });
}

std::optional<BookFolders> findBookFolders(const RunResult& earlier, const WantedRun& wanted,
                                           FileComparison& files) {
    if (earlier.request != wanted.request || earlier.options != wanted.options ||
        earlier.outputs.empty()) {
        return std::nullopt;
    }
    BookFolders folders;
    for (std::size_t index = 0; index < earlier.dependencies.size(); ++index) {
        const ResultDependency& file = earlier.dependencies[index];
        if (!isOnlyRead(file) && !files.isUnchanged(earlier, index)) {
            return std::nullopt;
        }
        folders.read.insert(folderOf(file.file));
    }
    for (const ResultOutput& output : earlier.outputs) {
        folders.written.insert(folderOf(output.path));
    }
    return folders;
}

bool areApart(const BookFolders& left, const BookFolders& right) {
    const auto writesInto = [](const BookFolders& writer, const BookFolders& other) {
        return std::any_of(writer.written.begin(), writer.written.end(),
                           [&](const std::string& folder) {
                               return other.written.contains(folder) || other.read.contains(folder);
                           });
    };
    return !writesInto(left, right) && !writesInto(right, left);
}

}  // namespace marrowpress
