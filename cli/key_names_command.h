#pragma once

#include <string>

#include "cli/exit_code.h"
#include "cli/streams.h"

namespace marrowpress {

/// Writes the names of the keys of a map to standard output, one a line, as far as a short look at
/// its text finds them: for a shell that completes a command line, and cannot wait.
ExitCode runKeyNames(const std::string& map, const Streams& streams);

}  // namespace marrowpress
