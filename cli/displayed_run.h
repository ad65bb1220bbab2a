#pragma once

#include "cli/run_display.h"
#include "runs/map_run.h"

namespace marrowpress {

/// As the `runRequest` for sinks, with `display` for these. A signal ends the process when the run
/// has ended, which it does early then.
RunOutcome runRequest(const RunSetting& setting, RunDisplay& display);

}  // namespace marrowpress
