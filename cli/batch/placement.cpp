#include "cli/batch/placement.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "cli/publish_paths.h"
#include "marrowpress/output_names.h"

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

}  // namespace marrowpress
