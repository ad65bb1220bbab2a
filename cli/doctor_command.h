#pragma once

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/streams.h"

namespace marrowpress {

/// Tells on standard output what this machine, or what a map's documents need here, has and lacks.
ExitCode runDoctor(const DoctorOptions& options, const Streams& streams);

}  // namespace marrowpress
