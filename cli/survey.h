#pragma once

#include <functional>
#include <string>

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/streams.h"
#include "marrowpress/observer.h"

namespace marrowpress {

/// A command that tells what a run has met, and not what is wrong with it.
struct Survey {
    std::string command;        ///< As users name it.
    const RunOptions& options;  ///< Without an output. Findings count for nothing.
    /// Gets what the run meets.
    std::function<void(const Observation&)> watch;
    /// Gets the path of each catalog that is looked for.
    std::function<void(const std::string&)> onCatalog = {};
    /// Writes what was met, once the run has come to its end.
    std::function<ExitCode(const Streams&)> giveResult;
    /// What the result depends on besides the options of all runs; empty for nothing.
    std::string wish = {};
    /// Called before each run, of which there are more when sources are changed meanwhile: nothing
    /// was met yet. May be empty.
    std::function<void()> forget = {};
};

/// Looks at the inputs, runs the map into a private folder, and writes the findings. A run that
/// fails has no result. With `--if-changed` no run is made where the last one's result still holds.
ExitCode runSurvey(const Survey& survey, const Streams& streams);

}  // namespace marrowpress
