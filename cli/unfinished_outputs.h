#pragma once

#include <map>
#include <string>
#include <vector>

#include "cli/removal_on_signal.h"
#include "cli/report_files.h"
#include "marrowpress/observer.h"

namespace marrowpress {

/// While it lives, what a run has begun to write is removed when a signal ends the process, so that
/// nothing half written looks like a result. What was there before stays until the run touches it.
class UnfinishedOutputs {
public:
    /// @param outputs  What the run is going to write or use in passing, whatever it meets.
    explicit UnfinishedOutputs(const std::vector<NamedPath>& outputs);

    /// To be told of everything that the run meets: a component is unfinished from its beginning
    /// on, and nothing is once it was written.
    void observe(const Observation& observation);

private:
    void add(const std::string& path, Removal removal);

    std::map<std::string, RemovalOnSignal> removals_;  ///< By path.
};

}  // namespace marrowpress
