#include "cli/displayed_run.h"

#include "cli/removal_on_signal.h"

namespace marrowpress {

RunOutcome runRequest(const RunSetting& setting, RunDisplay& display) {
    const RunSinks sinks{[&](std::string_view line) { display.showProgressLine(line); },
                         [&](std::string_view line) { display.showReportLine(line); },
                         [&](const Observation& observation) { display.observe(observation); },
                         DeferredSignal::hasCome};
    // It comes when the client has cleaned up, but before anybody takes the run for a failed one.
    const DeferredSignal deferred;
    RunOutcome outcome = runRequest(setting, sinks);
    display.end();
    return outcome;
}

}  // namespace marrowpress
