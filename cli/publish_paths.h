#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/options.h"
#include "cli/report_files.h"

namespace marrowpress {

/// The files of a publish run, absolute and in the form in which the client reads them: lexically
/// normal, with "/" for each backslash.
struct PublishPaths {
    std::filesystem::path map;
    std::filesystem::path output;  ///< Without a separator at its end when it is a folder's.
    std::vector<std::filesystem::path> filters;
};

/// @throws std::filesystem::filesystem_error when there is no current directory.
PublishPaths resolvePublishPaths(const RunOptions& options);

/// Why the run must not be started, as a sentence that names the argument; empty when it may.
///
/// The map must be a readable file, the output a file in a folder that exists, or for a flat book
/// that folder itself, and nothing that the run writes, uses in passing or removes may be one
/// of the sources, the catalogs among them; which components a flat book has is not known before
/// it runs. What stands at the output of a composite must be that of an earlier run. All paths and
/// texts must be UTF-8, because the request is.
std::optional<std::string> findPublishFault(const PublishOptions& options,
                                            const PublishPaths& paths);

/// Why `path` cannot be read as a file; empty when it can.
std::optional<std::string> findReadFault(const std::filesystem::path& path);

/// Why the texts of the arguments cannot be put into a request; empty when they can.
std::optional<std::string> findTextFault(const PublishPaths& paths);

/// The files that a run reads, with the arguments that name them: map, filters, baseline and
/// catalogs.
std::vector<NamedPath> sourcesOf(const RunOptions& options, const PublishPaths& paths);

/// The profiles among `sourcesOf`.
std::vector<NamedPath> filtersOf(const RunOptions& options, const PublishPaths& paths);

/// The folder that a run writes to, and how a sentence about it names it.
NamedPath outputFolderOf(const RunOptions& options, const PublishPaths& paths);

/// The files that a run writes, uses in passing or removes, as far as they are known before it.
std::vector<NamedPath> outputsOf(const RunOptions& options, const PublishPaths& paths);

}  // namespace marrowpress
