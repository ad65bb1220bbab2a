#include "cli/batch/batch_run.h"

#include <sched.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

#include "cli/batch/job_results.h"
#include "cli/batch/placement.h"
#include "cli/batch/system_memory.h"
#include "cli/batch/worker_arguments.h"
#include "cli/batch/worker_channels.h"
#include "cli/file_replacement.h"
#include "cli/make_rule.h"
#include "cli/waited_signals.h"
#include "results/up_to_date.h"

namespace marrowpress {
namespace {

using Clock = JobProcess::Clock;

/// What a job is taken to need until one has shown more.
constexpr std::uint64_t kUsualMemory = std::uint64_t{256} << 20;
/// How often whoever watches is shown something although nothing happens.
constexpr std::chrono::milliseconds kLookPause{200};
constexpr int kNiceness = 10;

std::size_t coreCount() {
    cpu_set_t cores;
    const int count = sched_getaffinity(0, sizeof cores, &cores) == 0 ? CPU_COUNT(&cores) : 1;
    return static_cast<std::size_t>(std::max(count, 1));
}

timespec timespecOf(std::chrono::nanoseconds time) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    return {seconds.count(), (time - seconds).count()};
}

/// Whether the system has no descriptors, processes or memory left just now.
bool isWantOfRoom(const std::exception& fault) {
    constexpr std::array kCodes{EMFILE, ENFILE, EAGAIN, ENOMEM};
    const auto* const error = dynamic_cast<const std::system_error*>(&fault);
    return error && std::find(kCodes.begin(), kCodes.end(), error->code().value()) != kCodes.end();
}

/// The rule of a result: the files that make and ninja can ask for.
std::string ruleOf(const std::string& target, const RunResult& result) {
    std::vector<std::string> prerequisites;
    for (const ResultDependency& file : result.dependencies) {
        if (file.sha256) {
            prerequisites.push_back(file.file);
        }
    }
    return makeRule(target, prerequisites);
}

}  // namespace

/// A job that is at work.
struct BatchRun::Running {
    Running(std::size_t job, bool isRunInPlace, const JobCall& call)
        : index(job),
          isInPlace(isRunInPlace),
          earlierKills(memoryKillCount()),
          process(std::in_place, call) {}

    std::size_t index;
    bool isInPlace;
    std::optional<BookFolders> folders;  ///< Where it writes and reads, if that is known.
    std::uint64_t earlierKills;  ///< Of the system, for want of memory, before the job began.
    std::optional<JobProcess> process;  ///< Until it has ended.
};

BatchRun::BatchRun(const Plan& plan, const BatchSetting& setting, const ResultFolder& results,
                   BatchWatcher& watcher)
    : plan_(plan),
      setting_(setting),
      results_(results),
      watcher_(watcher),
      lock_(results.path()),
      outcomes_(plan.jobs.size()),
      largest_(kUsualMemory) {}

BatchRun::~BatchRun() = default;

int BatchRun::run(const std::vector<std::size_t>& indexes) {
    const BlockedSignals blocked;
    if (setting_.resumes || setting_.retriesFailed) {
        skipUpToDate(indexes);
    }
    const std::set<std::size_t> late(setting_.late.begin(), setting_.late.end());
    std::vector<std::size_t> together;
    for (const std::size_t index : indexes) {
        if (outcomes_[index].isDone() || late.contains(index)) {
            continue;
        }
        const bool isAlone =
            !plan_.isCheck && needsItsPlace(plan_.jobs[index], results_.find(plan_.jobs[index].id));
        if (isAlone) {
            alone_.push_back(leftOf(index));
        } else {
            together.push_back(index);
        }
    }
    if (!together.empty() && waitForLock(RunLock::Kind::kShared)) {
        runTogether(std::move(together));
    }
    for (const std::size_t index : setting_.late) {
        if (!outcomes_[index].isDone()) {
            alone_.push_back({index});
        }
    }
    runAlone();
    return signal_;
}

int BatchRun::runAgain(const std::vector<std::size_t>& indexes) {
    const BlockedSignals blocked;
    for (const std::size_t index : indexes) {
        outcomes_[index] = JobOutcome();
        alone_.push_back({index});
    }
    runAlone();
    return signal_;
}

/// Only of flat books is it known what they leave alone.
BatchRun::Left BatchRun::leftOf(std::size_t index) {
    const Job& job = plan_.jobs[index];
    const std::optional<RunResult> earlier =
        isFlatBook(job.options) ? results_.find(job.id) : std::nullopt;
    return {index,
            earlier ? findBookFolders(*earlier, wantedRunOf(plan_, job), files_) : std::nullopt};
}

/// Whether the job's page is that of the run, where pages are wanted. A run that came to no end may
/// have written none.
bool BatchRun::isPageThere(const RunResult& result) const {
    const std::string page = pageOf(setting_, result.id);
    std::error_code ignored;
    return page.empty() || isReportThere(page, result.run) ||
           (result.state == ResultState::kFailed && !result.run.reports.contains(page) &&
            !std::filesystem::exists(page, ignored));
}

void BatchRun::skipUpToDate(const std::vector<std::size_t>& indexes) {
    for (const std::size_t index : indexes) {
        const std::optional<RunResult> result = results_.find(plan_.jobs[index].id);
        if (!result || (setting_.retriesFailed && result->state == ResultState::kFailed) ||
            !isPageThere(*result) ||
            !files_.isUpToDate(*result, wantedRunOf(plan_, plan_.jobs[index]))) {
            continue;
        }
        JobOutcome& outcome = outcomes_[index];
        outcome = outcomeOf(*result);
        outcome.state = JobOutcome::State::kUpToDate;
        watcher_.end(index, outcome, *result);
    }
}

void BatchRun::runTogether(std::vector<std::size_t> indexes) {
    std::reverse(indexes.begin(), indexes.end());
    while (!running_.empty() || (!indexes.empty() && !isEnding())) {
        while (!indexes.empty() && !isEnding() && mayStart()) {
            if (!start(indexes.back(), /*isInPlace=*/plan_.isCheck)) {
                break;
            }
            indexes.pop_back();
        }
        waitForSomething();
    }
}

/// False when the batch ends before.
bool BatchRun::waitForLock(RunLock::Kind kind) {
    while (!isEnding()) {
        if (lock_.tryToHold(kind)) {
            return true;
        }
        waitForSomething();
    }
    return false;
}

void BatchRun::runAlone() {
    if (alone_.empty() || !waitForLock(RunLock::Kind::kAlone)) {
        return;
    }
    while (!running_.empty() || (!alone_.empty() && !isEnding())) {
        if (isEnding() || !startApart()) {
            waitForSomething();
        }
    }
}

/// Starts the first job that stays away from those that run; false when there is none.
bool BatchRun::startApart() {
    if (!mayStart()) {
        return false;
    }
    const auto found = std::find_if(alone_.begin(), alone_.end(), [this](const Left& left) {
        return std::all_of(running_.begin(), running_.end(), [&](const auto& running) {
            return left.folders && running->folders && areApart(*left.folders, *running->folders);
        });
    });
    if (found == alone_.end()) {
        return false;
    }
    const Left left = *found;
    if (!start(left.index, /*isInPlace=*/true)) {
        return false;
    }
    alone_.erase(found);
    if (!running_.empty() && running_.back()->index == left.index) {
        running_.back()->folders = left.folders;
    }
    return true;
}

bool BatchRun::mayStart() const {
    if (running_.empty()) {
        return true;
    }
    if (running_.size() >= most_) {
        return false;
    }
    if (setting_.width > 0) {
        return running_.size() < setting_.width;
    }
    if (running_.size() >= coreCount()) {
        return false;
    }
    std::uint64_t memory = availableMemory();
    for (const std::unique_ptr<Running>& running : running_) {
        memory += running->process->residentMemory();
    }
    return (running_.size() + 1) * largest_ <= memory;
}

/// False when there is no room for it beside those that run: then there is none for as many later.
bool BatchRun::start(std::size_t index, bool isInPlace) {
    const Job& job = plan_.jobs[index];
    try {
        // Until the job has ended it has not happened.
        results_.remove(job.id);
        JobCall call{workerArguments(plan_, setting_, job, isInPlace), jobLine(job),
                     setting_.isNice ? kNiceness : 0, setting_.longest};
        running_.push_back(std::make_unique<Running>(index, isInPlace, call));
        outcomes_[index].state = JobOutcome::State::kRunning;
    } catch (const std::exception& fault) {
        if (!running_.empty() && isWantOfRoom(fault)) {
            most_ = running_.size();
            return false;
        }
        isAnyResultLost_ = true;
        watcher_.warn("`" + job.id + "` was not started: " + fault.what());
    }
    watcher_.look(outcomes_);
    return true;
}

/// Waits for the end of a job, for a signal, or until somebody has to be looked at.
void BatchRun::waitForSomething() {
    const Clock::time_point now = Clock::now();
    Clock::time_point next = now + kLookPause;
    for (const std::unique_ptr<Running>& running : running_) {
        next = std::min(next, running->process->deadline().value_or(next));
    }
    const sigset_t signals = waitedSignals();
    const timespec pause = timespecOf(std::max(next - now, Clock::duration::zero()));
    const int signal = sigtimedwait(&signals, nullptr, &pause);
    if (signal > 0 && signal != SIGCHLD) {
        signal_ = signal_ == 0 ? signal : signal_;
        for (const std::unique_ptr<Running>& running : running_) {
            running->process->stop();
        }
    }
    collectEnds();
    for (const std::unique_ptr<Running>& running : running_) {
        running->process->lookAtTime(Clock::now());
    }
    watcher_.look(outcomes_);
}

void BatchRun::collectEnds() {
    for (std::size_t at = 0; at < running_.size();) {
        const std::optional<JobEnd> end = running_[at]->process->findEnd();
        if (!end) {
            ++at;
            continue;
        }
        const std::unique_ptr<Running> ended = std::move(running_[at]);
        running_.erase(running_.begin() + static_cast<std::ptrdiff_t>(at));
        // Its descriptors may be the last ones, and a result needs one.
        ended->process.reset();
        finish(*ended, *end);
    }
}

void BatchRun::finish(Running& running, const JobEnd& end) {
    JobOutcome& outcome = outcomes_[running.index];
    outcome.state = JobOutcome::State::kWaiting;
    largest_ = std::max(largest_, end.memory);
    if (end.isStopped) {
        // What it may have been about to tell is not asked for: it did not happen.
        return;
    }
    if (end.exit == kNeedsItsPlaceExit && !running.isInPlace) {
        alone_.push_back({running.index});
        return;
    }
    RunResult result = resultOf(plan_, plan_.jobs[running.index], end,
                                setting_.longest.value_or(std::chrono::seconds(0)));
    if (outcome.tries == 1 && lackedMemory(end, result, memoryKillCount() - running.earlierKills)) {
        ++outcome.tries;
        alone_.push_back({running.index});
        return;
    }
    conclude(running.index, std::move(result), end);
}

void BatchRun::conclude(std::size_t index, RunResult result, const JobEnd& end) {
    result.run.plan = plan_.digest;
    result.run.tries = std::max(result.run.tries, outcomes_[index].tries);
    result.run.seconds = end.seconds;
    result.run.cpuSeconds = end.cpuSeconds;
    result.run.memory = end.memory;
    if (setting_.pageFolder) {
        rememberReport(pageOf(setting_, result.id), result.run);
    }
    JobOutcome outcome = outcomeOf(result);
    outcome.state = JobOutcome::State::kEnded;
    try {
        results_.put(result);
        if (setting_.depfile) {
            replaceFile(*setting_.depfile, ruleOf(results_.pathOf(result.id).string(), result));
        }
    } catch (const std::exception& fault) {
        isAnyResultLost_ = true;
        watcher_.warn(std::string(fault.what()) + "; `" + result.id + "` counts as not run");
    }
    outcomes_[index] = outcome;
    isStopped_ |= setting_.failsFast && outcome.hasFailed();
    watcher_.end(index, outcome, result);
}

void BatchRun::fail(const std::string& id, const std::string& other, const std::string& path) {
    for (std::size_t index = 0; index < plan_.jobs.size(); ++index) {
        std::optional<RunResult> result =
            plan_.jobs[index].id == id ? results_.find(id) : std::nullopt;
        if (!result) {
            continue;
        }
        const RunResult failed = withConflict(std::move(*result), other, path);
        results_.put(failed);
        outcomes_[index] = outcomeOf(failed);
        std::string sentence = "`" + id;
        sentence.append("` and `").append(other).append("` write and read ").append(path);
        watcher_.warn(sentence);
    }
}

}  // namespace marrowpress
