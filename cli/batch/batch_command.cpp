#include "cli/batch/batch_command.h"

#include <unistd.h>

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <numeric>
#include <optional>
#include <ostream>
#include <set>
#include <system_error>

#include "cli/aside_composite.h"
#include "cli/batch/batch_reports.h"
#include "cli/batch/batch_run.h"
#include "cli/batch/batch_view.h"
#include "cli/batch/job_conflicts.h"
#include "cli/batch/job_results.h"
#include "cli/batch/job_source.h"
#include "cli/batch/known_conflicts.h"
#include "cli/batch/plan_texts.h"
#include "cli/batch/result_places.h"
#include "cli/file_failure.h"
#include "cli/file_replacement.h"
#include "cli/output_folder.h"
#include "cli/publish_paths.h"
#include "cli/removal_on_signal.h"
#include "findings/language.h"
#include "findings/shown_path.h"
#include "host/file_text.h"
#include "runs/public_ids.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBatchName = "batch";

/// Where a job stands, and its name.
std::string placeOfJob(const Job& job) {
    return job.file.empty() ? job.id : job.file + ":" + std::to_string(job.line) + ": " + job.id;
}

/// One call of the command.
class Batch {
public:
    Batch(const BatchOptions& options, const Streams& streams)
        : options_(options),
          streams_(streams),
          results_(options.results, [&streams](const std::string& sentence) {
              streams.err << "marrowpress batch: " << sentence << ".\n";
          }) {}

    ExitCode run();

    /// By which the process is to end then; 0 for none.
    int signal() const noexcept { return signal_; }

private:
    ExitCode writePlan() const;
    ExitCode give(const std::string& text) const;
    ExitCode runJobs();
    ExitCode merge();
    void findReportFaults() const;
    void findOutputFaults() const;
    void findConflicts();
    std::vector<std::size_t> allJobs() const;
    std::vector<std::unique_ptr<OutputFolder>> openFolders() const;
    BatchSetting setting() const;
    std::map<std::string, double> earlierTimes() const;
    std::vector<JobConflict> conflictsOfResults(const std::vector<std::size_t>& indexes) const;
    int settleConflicts(BatchRun& run);
    void failConflicts();
    void failFor(const std::string& id, const std::string& other, const std::string& path);
    std::vector<std::size_t> newReaders(const std::vector<std::string>& ids) const;
    ExitCode exitOf(const std::vector<JobOutcome>& outcomes, bool isAnyResultLost) const;
    std::vector<JobOutcome> knownOutcomes() const;

    const BatchOptions& options_;
    const Streams& streams_;
    ResultFolder results_;
    Plan plan_;
    std::vector<std::size_t> indexes_;
    std::vector<std::size_t> late_;  ///< Those that read what others write, in their order.
    int signal_ = 0;
};

ExitCode Batch::run() {
    if (options_.action == BatchAction::kMerge) {
        plan_ = readPlan(options_.plan);
        indexes_ = allJobs();
        findReportFaults();
        return merge();
    }
    std::vector<std::string> passedOver;
    plan_ = planOf(options_, passedOver);
    if (!passedOver.empty() && !options_.diagnostics.isQuiet) {
        streams_.err << "marrowpress batch: passed over, being of other transtypes: "
                     << boost::algorithm::join(passedOver, ", ") << ".\n";
    }
    indexes_ = selectedJobs(options_, plan_);
    chooseLanguage(plan_.diagnostics.language);
    switch (options_.action) {
        case BatchAction::kList:
            return give(jobTableText(plan_, indexes_));
        case BatchAction::kPlan:
            findReportFaults();
            findConflicts();
            return writePlan();
        case BatchAction::kEmit:
            findReportFaults();
            findConflicts();
            return give(engineScriptText(options_, plan_, results_.path()));
        default:
            break;
    }
    if (const std::optional<std::string> fault = findCatalogOptionFault(plan_.catalogs)) {
        throw BatchFault(*fault);
    }
    findReportFaults();
    if (!plan_.isCheck) {
        findOutputFaults();
    }
    findConflicts();
    return options_.isDryRun ? give(dryRunText(plan_, indexes_)) : runJobs();
}

ExitCode Batch::give(const std::string& text) const {
    return writeResult(streams_, text) ? ExitCode::kSuccess : ExitCode::kRunFailed;
}

ExitCode Batch::writePlan() const {
    std::vector<Job> jobs;
    for (const std::size_t index : indexes_) {
        jobs.push_back(plan_.jobs[index]);
    }
    const Plan selected =
        makePlan(std::move(jobs), plan_.isCheck, plan_.catalogs, plan_.diagnostics);
    if (options_.plan == kStandardOutput) {
        return give(planText(selected));
    }
    // One that is the same stays as it is, so that what is made of it need not be made again.
    const std::string text = planText(selected);
    std::error_code ignored;
    const std::string earlier =
        fs::is_regular_file(options_.plan, ignored) ? readFile(options_.plan) : std::string();
    if (!earlier.empty() && !isPlan(earlier)) {
        throw BatchFault("--plan: " + options_.plan +
                         " is there already, and no plan; choose another file");
    }
    if (earlier != text) {
        replaceFile(fs::absolute(options_.plan), text);
    }
    return ExitCode::kSuccess;
}

/// @throws BatchFault
void Batch::findReportFaults() const {
    if (const std::optional<std::string> fault = findBatchReportFault(options_, plan_, results_)) {
        throw BatchFault(*fault);
    }
    if (const std::optional<std::string> fault = findResultPlaceFault(options_, plan_, results_)) {
        throw BatchFault(*fault);
    }
}

/// What `publish` would refuse is refused before anything is started.
///
/// @throws BatchFault
void Batch::findOutputFaults() const {
    for (const std::size_t index : indexes_) {
        const Job& job = plan_.jobs[index];
        PublishOptions options = job.options;
        options.catalogs = plan_.catalogs;
        const PublishPaths paths = resolvePublishPaths(options);
        std::error_code ignored;
        // A map that is not there fails its own job, and none of the others.
        if (!fs::exists(outputFolderOf(options, paths).path, ignored) || findReadFault(paths.map)) {
            continue;
        }
        if (const std::optional<std::string> fault = findPublishFault(options, paths)) {
            throw BatchFault(placeOfJob(job) + ": " + *fault);
        }
    }
}

std::vector<std::size_t> Batch::allJobs() const {
    std::vector<std::size_t> indexes(plan_.jobs.size());
    std::iota(indexes.begin(), indexes.end(), 0U);
    return indexes;
}

/// Jobs that get into each other's way as far as requests and earlier results tell.
///
/// @throws BatchFault
void Batch::findConflicts() {
    if (plan_.isCheck) {
        return;
    }
    const BatchAction action = options_.action;
    const bool isOnlyPlanned = action == BatchAction::kPlan || action == BatchAction::kEmit;
    // What is left of the plan others run, perhaps just now.
    const std::vector<std::size_t> jobs = action == BatchAction::kRun ? allJobs() : indexes_;
    const std::vector<JobConflict> found = findKnownConflicts(
        plan_, jobs, isOnlyPlanned ? std::vector<std::size_t>() : indexes_, results_);
    std::map<std::string, std::size_t> indexOf;
    for (const std::size_t index : jobs) {
        indexOf[plan_.jobs[index].id] = index;
    }
    for (const JobConflict& conflict : found) {
        if (!conflict.isRead || !options_.serializes) {
            throw BatchFault(conflictText(conflict));
        }
    }
    const std::optional<std::vector<std::string>> order = JobConflicts::orderOf(found);
    if (!order) {
        throw BatchFault("--serialize: jobs read each other's outputs in a circle: " +
                         conflictText(found.front()));
    }
    for (const std::string& id : *order) {
        late_.push_back(indexOf.at(id));
    }
}

/// The folders of outputs. They are made here, since a job that fails takes away those that it has
/// made itself, perhaps just before another one writes there.
///
/// @throws BatchFault
std::vector<std::unique_ptr<OutputFolder>> Batch::openFolders() const {
    std::vector<std::unique_ptr<OutputFolder>> opened;
    std::set<fs::path> known;
    for (const std::size_t index : indexes_) {
        const Job& job = plan_.jobs[index];
        const NamedPath folder = outputFolderOf(job.options, resolvePublishPaths(job.options));
        if (plan_.isCheck || !known.insert(folder.path).second) {
            continue;
        }
        opened.push_back(std::make_unique<OutputFolder>(folder.path, folder.shown));
        if (opened.back()->fault()) {
            throw BatchFault(placeOfJob(job) + ": " + *opened.back()->fault());
        }
        if (!isFlatBook(job.options)) {
            removeLeftAside(folder.path);
        }
    }
    return opened;
}

BatchSetting Batch::setting() const {
    BatchSetting setting;
    setting.width = options_.width;
    setting.failsFast = options_.failsFast;
    setting.isNice = options_.isNice;
    setting.longest = options_.longest;
    setting.resumes = options_.resumes;
    setting.retriesFailed = options_.retriesFailed;
    setting.late = late_;
    if (options_.reports.pageFolder) {
        setting.pageFolder = fs::absolute(*options_.reports.pageFolder).string();
    }
    if (options_.depfile) {
        setting.depfile = fs::absolute(*options_.depfile).string();
    }
    return setting;
}

/// For what is left to do; nobody sees it but on a terminal.
std::map<std::string, double> Batch::earlierTimes() const {
    std::map<std::string, double> times;
    if (isTerminal(STDERR_FILENO)) {
        for (const std::size_t index : indexes_) {
            if (const auto result = results_.find(plan_.jobs[index].id)) {
                times[result->id] = result->run.seconds;
            }
        }
    }
    return times;
}

ExitCode Batch::runJobs() {
    const std::vector<std::unique_ptr<OutputFolder>> folders = openFolders();
    results_.make();
    if (options_.reports.pageFolder) {
        fs::create_directories(*options_.reports.pageFolder);
    }
    const BatchSetting how = setting();
    BatchView view(plan_, indexes_, options_.diagnostics, earlierTimes(), streams_);
    if (options_.isRepeated) {
        view.hideUpToDate();
    }
    BatchRun run(plan_, how, results_, view);
    signal_ = run.run(indexes_);
    if (signal_ == 0 && !plan_.isCheck) {
        signal_ = settleConflicts(run);
    }
    view.finish();
    if (signal_ != 0) {
        return ExitCode::kRunFailed;
    }
    const std::vector<JobOutcome>& outcomes = run.outcomes();
    const ExitCode code = exitOf(outcomes, run.isAnyResultLost());
    writeBatchReports(options_.reports, plan_, indexes_, results_, static_cast<int>(code));
    return writeResult(streams_, view.tableText(outcomes)) ? code : ExitCode::kRunFailed;
}

std::vector<JobConflict> Batch::conflictsOfResults(const std::vector<std::size_t>& indexes) const {
    JobConflicts conflicts;
    for (const std::size_t index : indexes) {
        if (const std::optional<RunResult> result = results_.find(plan_.jobs[index].id)) {
            conflicts.add(*result);
        }
    }
    return conflicts.find();
}

/// What only the runs have shown: jobs that got into each other's way have failed, and those that
/// may read what others write run again behind them.
///
/// @return  As `BatchRun::run`.
int Batch::settleConflicts(BatchRun& run) {
    std::vector<std::size_t> done;
    std::copy_if(indexes_.begin(), indexes_.end(), std::back_inserter(done),
                 [&run](std::size_t index) { return run.outcomes()[index].isDone(); });
    const std::vector<JobConflict> found = conflictsOfResults(done);
    const std::optional<std::vector<std::string>> order = JobConflicts::orderOf(found);
    for (const JobConflict& conflict : found) {
        if (!conflict.isRead || !options_.serializes || !order) {
            run.fail(conflict.writer, conflict.other, conflict.path);
            run.fail(conflict.other, conflict.writer, conflict.path);
        }
    }
    return options_.serializes && order ? run.runAgain(newReaders(*order)) : 0;
}

/// Those of `ids` that did not run late already.
std::vector<std::size_t> Batch::newReaders(const std::vector<std::string>& ids) const {
    std::vector<std::size_t> readers;
    for (const std::string& id : ids) {
        const auto isIt = [&](std::size_t index) { return plan_.jobs[index].id == id; };
        if (std::none_of(late_.begin(), late_.end(), isIt)) {
            readers.push_back(*std::find_if(indexes_.begin(), indexes_.end(), isIt));
        }
    }
    return readers;
}

ExitCode Batch::exitOf(const std::vector<JobOutcome>& outcomes, bool isAnyResultLost) const {
    bool hasFindings = false;
    for (const std::size_t index : indexes_) {
        const JobOutcome& outcome = outcomes[index];
        if (!outcome.isDone() || outcome.hasFailed()) {
            return ExitCode::kRunFailed;
        }
        hasFindings |= outcome.result == ResultState::kFindings;
    }
    if (isAnyResultLost) {
        return ExitCode::kRunFailed;
    }
    return hasFindings ? ExitCode::kFindings : ExitCode::kSuccess;
}

/// What the results say of the jobs.
///
/// @throws BatchFault when they are of another plan.
std::vector<JobOutcome> Batch::knownOutcomes() const {
    std::vector<JobOutcome> outcomes(plan_.jobs.size());
    for (const std::size_t index : indexes_) {
        const std::optional<RunResult> result = results_.find(plan_.jobs[index].id);
        if (!result) {
            continue;
        }
        if (result->run.plan != plan_.digest) {
            throw BatchFault(results_.pathOf(result->id).string() +
                             ": this result is of another plan, or the plan was changed since");
        }
        outcomes[index] = outcomeOf(*result);
    }
    return outcomes;
}

/// Jobs that got into each other's way have failed, as in a local batch, which would have seen it.
/// Their files stay: an engine that looks at times would take a new one for a run.
void Batch::failConflicts() {
    const std::vector<JobConflict> found = conflictsOfResults(indexes_);
    const bool isOrdered = options_.serializes && JobConflicts::orderOf(found);
    for (const JobConflict& conflict : found) {
        if (!conflict.isRead || !isOrdered) {
            failFor(conflict.writer, conflict.other, conflict.path);
            failFor(conflict.other, conflict.writer, conflict.path);
        }
    }
}

/// Nothing changes for a job whose result says so already.
void Batch::failFor(const std::string& id, const std::string& other, const std::string& path) {
    const std::optional<RunResult> result = results_.find(id);
    if (!result) {
        return;
    }
    RunResult failed = withConflict(*result, other, path);
    if (failed.findings.size() > result->findings.size()) {
        streams_.err << "marrowpress batch: `" << id << "` and `" << other << "` write and read "
                     << path << ".\n";
        results_.overrule(std::move(failed));
    }
}

ExitCode Batch::merge() {
    chooseLanguage(plan_.diagnostics.language);
    results_ = ResultFolder(options_.file, [this](const std::string& sentence) {
        streams_.err << "marrowpress batch: " << sentence << ".\n";
    });
    std::vector<JobOutcome> outcomes = knownOutcomes();
    if (!plan_.isCheck) {
        failConflicts();
        outcomes = knownOutcomes();
    }
    const ExitCode code = exitOf(outcomes, false);
    writeBatchReports(options_.reports, plan_, indexes_, results_, static_cast<int>(code));
    const BatchView view(plan_, indexes_, options_.diagnostics, {}, streams_);
    return writeResult(streams_, view.tableText(outcomes)) ? code : ExitCode::kRunFailed;
}

}  // namespace

ExitCode runBatch(const BatchOptions& options, const Streams& streams) {
    int signal = 0;
    try {
        Batch batch(options, streams);
        const ExitCode code = batch.run();
        signal = batch.signal();
        if (signal == 0) {
            return code;
        }
    } catch (const BatchFault& fault) {
        streams.err << usageErrorText(kBatchName, fault.what());
        return ExitCode::kWrongUsage;
    } catch (const FileFailure& failure) {
        streams.err << "marrowpress batch: " << failure.what() << ".\n";
        return ExitCode::kRunFailed;
    }
    // All that was to be cleaned up is gone by now.
    endBySignal(signal);
}

}  // namespace marrowpress
