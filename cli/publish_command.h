#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/result_recorder.h"
#include "cli/streams.h"

namespace marrowpress {

/// The sentence about the first of `paths` at which there is no file; empty when all are there.
std::optional<std::string> findMissingFile(const std::vector<std::string>& paths);

/// Publishes one map through the client module. Findings go to standard error, or where the options
/// say; the paths of the written files go to standard output, one a line. Why there is no output is
/// told by a sentence, and by a finding.
///
/// @param recording  May be null.
ExitCode runPublish(const PublishOptions& options, const Streams& streams,
                    const RunRecording* recording = nullptr);

}  // namespace marrowpress
