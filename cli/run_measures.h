#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/diagnostics_options.h"
#include "cli/exit_code.h"
#include "cli/streams.h"
#include "runs/run_clock.h"

namespace marrowpress {

/// The clock of a command for whoever wants to know what took its time, and what comes of it.
class RunMeasures {
public:
    /// @param options  Must outlive this object.
    explicit RunMeasures(const DiagnosticsOptions& options);

    /// Null when nobody wants to know.
    RunClock* clock() noexcept { return clock_ ? &*clock_ : nullptr; }

    /// Writes the timeline and the statistics, and gives the exit code: `code`, unless the timeline
    /// can't be written. To be called when all else is done.
    ///
    /// @param title  Of the timeline.
    ExitCode finish(ExitCode code, const std::string& title, const Streams& streams);

private:
    const DiagnosticsOptions& options_;
    std::optional<RunClock> clock_;
};

}  // namespace marrowpress
