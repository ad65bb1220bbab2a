#pragma once

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/streams.h"

namespace marrowpress {

/// Tells the files that a publication depends on. Findings count for nothing.
ExitCode runDeps(const DepsOptions& options, const Streams& streams);

}  // namespace marrowpress
