#pragma once

#include <string>

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/publish_paths.h"
#include "cli/streams.h"

namespace marrowpress {

/// The text of the publish request that `options` ask for. All texts must be UTF-8.
std::string buildRequest(const PublishOptions& options, const PublishPaths& paths);

/// Whether a console text says that a document could not be written.
bool saysCannotWrite(std::string_view consoleText);

/// Publishes one map through the client module. Progress and reports go to standard error; the
/// path of the written file goes to standard output, and a failure ends with one sentence.
ExitCode runPublish(const PublishOptions& options, const Streams& streams);

}  // namespace marrowpress
