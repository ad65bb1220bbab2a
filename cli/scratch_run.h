#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/profile_set.h"
#include "cli/publish_paths.h"
#include "cli/run_display.h"
#include "findings/fold.h"
#include "runs/run_clock.h"

namespace marrowpress {

/// What the runs of a command have found.
struct RunTotal {
    FindingList list;
    std::size_t droppedFaults = 0;
    std::size_t topics = 0;  ///< The most that a run had.
    ExitCode code = ExitCode::kSuccess;
    std::optional<std::int32_t> status;  ///< That of the last run; empty without an answer.
    std::set<std::string> places;        ///< Of components; absolute. There they would stand.
};

/// A run for what it tells. Its output goes into a private folder, which is gone at the end.
struct ScratchRun {
    const RunOptions& options;  ///< The output is only looked at, and may be empty.
    const PublishPaths& paths;  ///< Those of the options.
    const ProfileSet& profiles;
    /// Without them, report lines are shown in their place.
    bool hasFindings = true;
    /// Gets what the run meets, references too.
    std::function<void(const Observation&)> watch = {};
    /// Gets the path of each catalog that is looked for.
    std::function<void(const std::string&)> onCatalog = {};
    /// Measures what the run does, unless it is null.
    RunClock* clock = nullptr;
    /// As that of a `RunSetting`.
    bool endsBeforeOutput = false;
};

/// Runs, and adds what was found to `total`.
///
/// @throws ScratchError as `ScratchFolder` does, and what `runRequest` throws.
void runInScratch(const ScratchRun& run, RunDisplay& display, RunTotal& total);

}  // namespace marrowpress
