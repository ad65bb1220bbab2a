#pragma once

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/streams.h"

namespace marrowpress {

/// Publishes one map, and again when files change on which the output depends, until a signal ends
/// it.
///
/// @return  What `publish` would, when that would not begin. Else the process ends by the signal.
ExitCode runWatch(const WatchOptions& options, const Streams& streams);

}  // namespace marrowpress
