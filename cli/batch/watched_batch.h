#pragma once

#include "cli/batch_options.h"
#include "cli/exit_code.h"
#include "cli/streams.h"

namespace marrowpress {

/// Publishes what a file of jobs names, and when files change those jobs again that depend on
/// them, until a signal ends it. Jobs whose results are up to date are not run, not even at first.
///
/// @return  What `batch` would, when that would not begin. Else the process ends by the signal.
ExitCode runBatchWatch(const BatchOptions& options, const Streams& streams);

}  // namespace marrowpress
