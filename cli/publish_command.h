#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/publish_paths.h"
#include "cli/streams.h"

namespace marrowpress {

/// The text of the publish request that `options` ask for. `filter` is the one profile that the
/// client takes. All texts must be UTF-8.
std::string buildRequest(const PublishOptions& options, const PublishPaths& paths,
                         const std::optional<std::filesystem::path>& filter);

/// The sentence about the first of `paths` at which there is no file; empty when all are there.
std::optional<std::string> findMissingFile(const std::vector<std::string>& paths);

/// Publishes one map through the client module. Findings go to standard error, or where the options
/// say; the paths of the written files go to standard output, one a line. Why there is no output is
/// told by a sentence, and by a finding.
ExitCode runPublish(const PublishOptions& options, const Streams& streams);

}  // namespace marrowpress
