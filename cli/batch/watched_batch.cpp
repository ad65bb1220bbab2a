#include "cli/batch/watched_batch.h"

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/batch/batch_command.h"
#include "cli/batch/job_source.h"
#include "cli/batch/result_folder.h"
#include "cli/options.h"
#include "cli/removal_on_signal.h"
#include "cli/watch/watch_loop.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// The jobs of one file.
class WatchedBatch final : public WatchedWork {
public:
    WatchedBatch(const BatchOptions& options, const Streams& streams)
        : options_(options), streams_(streams), folder_(fs::current_path()) {
        options_.action = BatchAction::kPublish;
        options_.resumes = true;
    }

    ExitCode run(int channel) override;
    std::optional<WatchOutcome> outcomeOf(const TaskEnd& end) override;

private:
    BatchOptions options_;
    const Streams& streams_;
    fs::path folder_;
};

ExitCode WatchedBatch::run(int /*channel*/) {
    return runBatch(options_, streams_);
}

std::optional<WatchOutcome> WatchedBatch::outcomeOf(const TaskEnd& end) {
    if (end.exit == static_cast<int>(ExitCode::kWrongUsage)) {
        return std::nullopt;
    }
    const bool isFirst = !std::exchange(options_.isRepeated, true);
    std::optional<WatchOutcome> outcome(std::in_place);
    outcome->files.add(fs::absolute(options_.file).string(), end.begin);
    const ResultFolder results(options_.results, [](const std::string&) {});
    try {
        std::vector<std::string> passedOver;
        const Plan plan = planOf(options_, passedOver);
        for (const std::size_t index : selectedJobs(options_, plan)) {
            const Job& job = plan.jobs[index];
            for (const std::string& source : job.sources) {
                outcome->files.add(source, end.begin);
            }
            if (const std::optional<RunResult> result = results.find(job.id)) {
                outcome->add(*result, folder_.string());
            } else {
                outcome->files.add(job.options.map, end.begin);
            }
        }
    } catch (const BatchFault&) {
        // It was changed since, so the next run tells what is wrong.
        if (!isFirst) {
            return std::nullopt;
        }
        outcome->files = FollowedFiles();
        outcome->files.add(fs::absolute(options_.file).string(), 0);
    }
    return outcome;
}

}  // namespace

ExitCode runBatchWatch(const BatchOptions& options, const Streams& streams) {
    WatchedBatch batch(options, streams);
    const WatchEnd end = watch(
        batch,
        {options.polls,
         {},
         options.diagnostics.isQuiet || options.diagnostics.format == DiagnosticsFormat::kJson},
        streams);
    if (end.signal != 0) {
        endBySignal(end.signal);
    }
    return end.code;
}

}  // namespace marrowpress
