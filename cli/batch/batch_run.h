#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/batch/batch_setting.h"
#include "cli/batch/job_outcome.h"
#include "cli/batch/job_process.h"
#include "cli/batch/placement.h"
#include "cli/batch/plan.h"
#include "cli/batch/result_folder.h"
#include "cli/batch/run_lock.h"
#include "results/run_result.h"
#include "results/up_to_date.h"

namespace marrowpress {

/// Whoever shows what goes on.
class BatchWatcher {
public:
    BatchWatcher() = default;
    BatchWatcher(const BatchWatcher&) = delete;
    BatchWatcher& operator=(const BatchWatcher&) = delete;
    virtual ~BatchWatcher() = default;

    /// Something has begun or ended, or time has passed.
    virtual void look(const std::vector<JobOutcome>& outcomes) = 0;
    /// The job of that index has a result.
    virtual void end(std::size_t index, const JobOutcome& outcome, const RunResult& result) = 0;
    /// Something that is wrong beside the jobs.
    virtual void warn(const std::string& sentence) = 0;
};

/// Runs the jobs of a plan, each in a process of its own. What needs the files of others for itself
/// runs when the others are done: alone, or beside what is known to stay away from them.
class BatchRun {
public:
    /// @param results  Its folder is there.
    BatchRun(const Plan& plan, const BatchSetting& setting, const ResultFolder& results,
             BatchWatcher& watcher);
    BatchRun(const BatchRun&) = delete;
    BatchRun& operator=(const BatchRun&) = delete;
    ~BatchRun();

    /// Runs those jobs of the plan, in their order. With a signal the running jobs end, and none
    /// starts any more.
    ///
    /// @return  The signal by which the batch is to end; 0 when none came.
    int run(const std::vector<std::size_t>& indexes);

    /// Runs those jobs once more, one after the other, since they have read what others wrote
    /// meanwhile.
    ///
    /// @return  As `run`.
    int runAgain(const std::vector<std::size_t>& indexes);

    /// Makes a job that has a result a failed one, since what it wrote or read is another one's.
    ///
    /// @throws FileFailure
    void fail(const std::string& id, const std::string& other, const std::string& path);

    /// Of each job of the plan.
    const std::vector<JobOutcome>& outcomes() const noexcept { return outcomes_; }

    /// Whether a result could not be written.
    bool isAnyResultLost() const noexcept { return isAnyResultLost_; }

private:
    struct Running;

    /// A job that is made in its place, when the others are done.
    struct Left {
        std::size_t index;
        std::optional<BookFolders> folders = std::nullopt;  ///< Without them nothing else may run.
    };

    bool isPageThere(const RunResult& result) const;
    void skipUpToDate(const std::vector<std::size_t>& indexes);
    void runTogether(std::vector<std::size_t> indexes);
    Left leftOf(std::size_t index);
    void runAlone();
    bool startApart();
    bool waitForLock(RunLock::Kind kind);
    bool mayStart() const;
    bool start(std::size_t index, bool isInPlace);
    void waitForSomething();
    void collectEnds();
    void finish(Running& running, const JobEnd& end);
    void conclude(std::size_t index, RunResult result, const JobEnd& end);
    bool isEnding() const noexcept { return signal_ != 0 || isStopped_; }

    const Plan& plan_;
    const BatchSetting& setting_;
    const ResultFolder& results_;
    BatchWatcher& watcher_;
    RunLock lock_;
    std::vector<JobOutcome> outcomes_;
    std::vector<std::unique_ptr<Running>> running_;
    std::deque<Left> alone_;  ///< Those that are left for the end.
    FileComparison files_;
    std::uint64_t largest_;
    std::size_t most_ = std::numeric_limits<std::size_t>::max();  ///< For which there is room.
    int signal_ = 0;
    bool isStopped_ = false;  ///< A job failed, and no more is wanted.
    bool isAnyResultLost_ = false;
};

}  // namespace marrowpress
