#pragma once

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/streams.h"

namespace marrowpress {

/// Tells the keys of a map, or all of one of them. Findings count for nothing.
ExitCode runKeys(const KeysOptions& options, const Streams& streams);

}  // namespace marrowpress
