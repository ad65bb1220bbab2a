#pragma once

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "cli/batch/batch_run.h"
#include "cli/streams.h"
#include "cli/terminal.h"

namespace marrowpress {

/// Shows a batch to people: on a terminal a live line, elsewhere a line for each job; the findings
/// of each job as it ends, and one table at the end.
class BatchView final : public BatchWatcher {
public:
    /// @param indexes       Those jobs of the plan that are run.
    /// @param earlierTimes  Seconds that jobs took the last time, by id.
    BatchView(const Plan& plan, const std::vector<std::size_t>& indexes,
              const DiagnosticsOptions& options, const std::map<std::string, double>& earlierTimes,
              const Streams& streams);

    /// Jobs that are not run because they are up to date are counted, and not told.
    void hideUpToDate() noexcept { hidesUpToDate_ = true; }

    void look(const std::vector<JobOutcome>& outcomes) override;
    void end(std::size_t index, const JobOutcome& outcome, const RunResult& result) override;
    void warn(const std::string& sentence) override;

    /// The table.
    std::string tableText(const std::vector<JobOutcome>& outcomes) const;

    /// To be called before anything else is written.
    void finish() { live_.clear(); }

private:
    using Clock = std::chrono::steady_clock;

    bool isHidden(const JobOutcome& outcome) const;
    std::string liveText(const std::vector<JobOutcome>& outcomes) const;
    double secondsLeft(const std::vector<JobOutcome>& outcomes) const;
    std::string findingsText(const RunResult& result) const;

    const Plan& plan_;
    const std::vector<std::size_t>& indexes_;
    const DiagnosticsOptions& options_;
    std::vector<double> earlierTimes_;  ///< As `indexes_`; empty when none is known.
    const Streams& streams_;
    LiveLine live_;
    bool isLive_;
    bool hidesUpToDate_ = false;
    std::size_t done_ = 0;
    Clock::time_point start_ = Clock::now();
};

/// "1.2 s", "3:07 min", "2:03:07 h".
std::string durationText(double seconds);

}  // namespace marrowpress
