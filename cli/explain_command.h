#pragma once

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/streams.h"

namespace marrowpress {

/// Writes to standard output what the findings of an id mean, or all ids with their titles.
ExitCode runExplain(const ExplainOptions& options, const Streams& streams);

}  // namespace marrowpress
