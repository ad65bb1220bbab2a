#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/publish_paths.h"
#include "cli/streams.h"
#include "host/typed_record.h"

namespace marrowpress {

/// The text of the publish request that `options` ask for. All texts must be UTF-8.
std::string buildRequest(const PublishOptions& options, const PublishPaths& paths);

/// The paths of a flat book's components in the client's answer, in its order, each once. Empty
/// when the answer has no such list.
std::optional<std::vector<std::string>> componentsOf(const TypedValues& answer);

/// The sentence about the first of `paths` at which there is no file; empty when all are there.
std::optional<std::string> findMissingFile(const std::vector<std::string>& paths);

/// Publishes one map through the client module. Progress and reports go to standard error; the
/// paths of the written files go to standard output, one a line, and a failure ends with one
/// sentence.
ExitCode runPublish(const PublishOptions& options, const Streams& streams);

}  // namespace marrowpress
