#pragma once

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/streams.h"

namespace marrowpress {

/// Runs one job of a batch, in a process of its own: its line of the plan comes on standard input.
/// The result goes to the descriptors that `worker_channels.h` names, and not where nothing was
/// started; then a sentence on standard error says why.
ExitCode runWorker(const WorkerOptions& options, const Streams& streams);

}  // namespace marrowpress
