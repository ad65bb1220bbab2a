#pragma once

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/result_recorder.h"
#include "cli/streams.h"

namespace marrowpress {

/// Looks for what is wrong with one map, and writes no output.
///
/// @param recording  May be null.
ExitCode runCheck(const CheckOptions& options, const Streams& streams,
                  const RunRecording* recording = nullptr);

}  // namespace marrowpress
