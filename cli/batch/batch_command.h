#pragma once

#include "cli/batch_options.h"
#include "cli/exit_code.h"
#include "cli/streams.h"

namespace marrowpress {

/// Publishes or checks many deliverables, or does a part of that.
///
/// What was made goes to standard output as one table at the end, findings and what goes on to
/// standard error. With a signal the process ends by it, when the running jobs have cleaned up.
ExitCode runBatch(const BatchOptions& options, const Streams& streams);

}  // namespace marrowpress
