#pragma once

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/streams.h"

namespace marrowpress {

/// Looks for what is wrong with one map, and writes no output.
ExitCode runCheck(const CheckOptions& options, const Streams& streams);

}  // namespace marrowpress
