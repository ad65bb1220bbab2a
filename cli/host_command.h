#pragma once

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/streams.h"

namespace marrowpress {

/// Sends each request to the client module, in one process, and writes one line of JSON for each
/// to standard output: `{"values":[...]}`, and `{"values":null}` when the client gave no answer.
///
/// All files are read before the client is started, so that wrong usage starts nothing.
ExitCode runHost(const HostOptions& options, const Streams& streams);

}  // namespace marrowpress
