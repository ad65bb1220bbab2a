#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/report_files.h"
#include "cli/result_recorder.h"
#include "cli/streams.h"

namespace marrowpress {

/// A run whose result is kept, so that it need not be made again while nothing changes.
struct RepeatedRun {
    std::string command;            ///< "publish", "check", "keys".
    const PublishOptions& options;  ///< For check those that it shares with it.
    std::size_t ownFilters = 0;     ///< As for `identityOf`.
    std::string wish = {};          ///< As for `identityOf`.
};

/// Whether the result of a run with these options is kept.
bool isRepeated(const RunOptions& options);

/// For `findReportFault`: the file of the result, if one was named, must be no other file's place.
void addResultFile(const RunOptions& options, std::vector<NamedPath>& reports);

/// Makes the run by `run`, and keeps its result; with `--if-changed` only when the last one's does
/// not hold any more. Else that one's findings are shown again, and its exit code counts.
///
/// A run whose sources were changed while it read them is made again.
ExitCode runRepeated(const RepeatedRun& repeated, const Streams& streams,
                     const std::function<ExitCode(const RunRecording&)>& run);

}  // namespace marrowpress
