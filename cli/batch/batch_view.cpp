#include "cli/batch/batch_view.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <utility>

#include "cli/findings_text.h"
#include "cli/run_display.h"
#include "cli/text_table.h"
#include "findings/finding_lines.h"

namespace marrowpress {
namespace {

using State = JobOutcome::State;

/// More rows than people read are those of jobs that have something to say.
constexpr std::size_t kMostCleanRows = 40;

std::string wordOf(const JobOutcome& outcome) {
    switch (outcome.state) {
        case State::kWaiting:
            return "not run";
        case State::kRunning:
            return "running";
        case State::kUpToDate:
        case State::kEnded:
            break;
    }
    return stateName(outcome.result);
}

std::string countText(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

/// Behind the state: how many findings there are, and how long it took.
std::string detailText(const JobOutcome& outcome) {
    std::string text;
    if (outcome.errors > 0) {
        text += ", " + countText(outcome.errors, "error", "errors");
    }
    if (outcome.warnings > 0) {
        text += ", " + countText(outcome.warnings, "warning", "warnings");
    }
    text +=
        outcome.state == State::kUpToDate ? ", up to date" : ", " + durationText(outcome.seconds);
    return text;
}

std::string memoryText(std::uint64_t bytes) {
    constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;
    return std::to_string((bytes + kMegabyte / 2) / kMegabyte) + " MB";
}

/// In the order of the jobs. One that is not known is taken for as long as the others; without any
/// there are none.
std::vector<double> timesOf(const Plan& plan, const std::vector<std::size_t>& indexes,
                            const std::map<std::string, double>& known) {
    double sum = 0;
    std::size_t count = 0;
    for (const std::size_t index : indexes) {
        const auto time = known.find(plan.jobs[index].id);
        if (time != known.end()) {
            sum += time->second;
            ++count;
        }
    }
    if (count == 0) {
        return {};
    }
    std::vector<double> times;
    for (const std::size_t index : indexes) {
        const auto time = known.find(plan.jobs[index].id);
        times.push_back(time == known.end() ? sum / static_cast<double>(count) : time->second);
    }
    return times;
}

}  // namespace

BatchView::BatchView(const Plan& plan, const std::vector<std::size_t>& indexes,
                     const DiagnosticsOptions& options,
                     const std::map<std::string, double>& earlierTimes, const Streams& streams)
    : plan_(plan),
      indexes_(indexes),
      options_(options),
      earlierTimes_(timesOf(plan, indexes, earlierTimes)),
      streams_(streams),
      live_(streams.err, STDERR_FILENO),
      isLive_(isTerminal(STDERR_FILENO) && !options.hasNoProgress && !options.isQuiet &&
              !isForTools(options)) {}

void BatchView::look(const std::vector<JobOutcome>& outcomes) {
    // Called for each start and each end: most of these nobody could read.
    if (isLive_ && live_.isDue()) {
        live_.show(liveText(outcomes));
    }
}

void BatchView::end(std::size_t index, const JobOutcome& outcome, const RunResult& result) {
    ++done_;
    live_.clear();
    if (isHidden(outcome)) {
        return;
    }
    const bool isWorthALine = !isLive_ || outcome.result != ResultState::kClean;
    std::string text;
    if (isWorthALine && !options_.isQuiet && !isForTools(options_)) {
        text.append("[").append(std::to_string(done_)).append("/");
        text.append(std::to_string(indexes_.size())).append("] ").append(plan_.jobs[index].id);
        text.append(": ").append(wordOf(outcome)).append(detailText(outcome)).append("\n");
    }
    // At once: what several batches write to one place stays apart, and it takes one system call.
    streams_.err << text + findingsText(result) << std::flush;
}

bool BatchView::isHidden(const JobOutcome& outcome) const {
    return hidesUpToDate_ && outcome.state == State::kUpToDate;
}

void BatchView::warn(const std::string& sentence) {
    live_.clear();
    streams_.err << "marrowpress batch: " << sentence << ".\n" << std::flush;
}

std::string BatchView::findingsText(const RunResult& result) const {
    if (result.findings.empty() && !isForTools(options_)) {
        return {};
    }
    std::ostringstream text;
    writeFindings(text, result.findings, summaryOf(result), options_,
                  FindingsTarget{/*isTerminal=*/true, result.id});
    return text.str();
}

/// What is left to do by the times of the last run; negative when nobody knows.
double BatchView::secondsLeft(const std::vector<JobOutcome>& outcomes) const {
    double known = 0;
    double done = 0;
    for (std::size_t at = 0; at < earlierTimes_.size(); ++at) {
        const JobOutcome& outcome = outcomes[indexes_[at]];
        // What is up to date takes no time now.
        if (outcome.state != State::kUpToDate) {
            known += earlierTimes_[at];
            done += outcome.isDone() ? earlierTimes_[at] : 0;
        }
    }
    const double elapsed = std::chrono::duration<double>(Clock::now() - start_).count();
    return done > 0 ? elapsed * (known - done) / done : -1;
}

std::string BatchView::liveText(const std::vector<JobOutcome>& outcomes) const {
    std::size_t running = 0;
    std::size_t failed = 0;
    for (const std::size_t index : indexes_) {
        running += outcomes[index].state == State::kRunning ? 1 : 0;
        failed += outcomes[index].hasFailed() ? 1 : 0;
    }
    std::string text = std::to_string(done_) + " of " + std::to_string(indexes_.size()) +
                       " done, " + std::to_string(running) + " running, " + std::to_string(failed) +
                       " failed";
    const double left = secondsLeft(outcomes);
    return left < 0 ? text : text + ", " + durationText(left) + " left";
}

std::string BatchView::tableText(const std::vector<JobOutcome>& outcomes) const {
    TextTable table({"JOB", "STATE", "EXIT", "ERRORS", "WARNINGS", "TIME", "MEMORY"});
    std::map<std::string, std::size_t> counts;
    bool hasRows = false;
    for (const std::size_t index : indexes_) {
        const JobOutcome& outcome = outcomes[index];
        ++counts[wordOf(outcome)];
        const bool isPlain = indexes_.size() > kMostCleanRows && outcome.isDone() &&
                             outcome.result == ResultState::kClean;
        if (isPlain || isHidden(outcome)) {
            continue;
        }
        hasRows = true;
        const bool isDone = outcome.isDone();
        table.add({plan_.jobs[index].id, wordOf(outcome),
                   isDone ? std::to_string(outcome.exit) : "",
                   isDone ? std::to_string(outcome.errors) : "",
                   isDone ? std::to_string(outcome.warnings) : "",
                   isDone ? durationText(outcome.seconds) : "",
                   isDone ? memoryText(outcome.memory) : ""});
    }
    std::string text = hasRows ? table.text() + "\n" : std::string();
    text += countText(indexes_.size(), "job", "jobs") + ":";
    const char* separator = " ";
    for (const char* const word : {"clean", "findings", "failed", "not run"}) {
        if (counts[word] > 0) {
            text += separator + std::to_string(counts[word]) + " " +
                    (std::string_view(word) == "findings" ? "with findings" : word);
            separator = ", ";
        }
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    return text + "; " + durationText(seconds) + "\n";
}

std::string durationText(double seconds) {
    constexpr double kMinute = 60;
    constexpr long kMinutesPerHour = 60;
    if (seconds < kMinute) {
        return fixedText(seconds, 1) + " s";
    }
    const long whole = std::lround(seconds);
    const long minutes = whole / kMinutesPerHour;
    std::ostringstream text;
    text << std::setfill('0');
    if (minutes < kMinutesPerHour) {
        text << minutes << ":" << std::setw(2) << whole % kMinutesPerHour << " min";
    } else {
        text << minutes / kMinutesPerHour << ":" << std::setw(2) << minutes % kMinutesPerHour << ":"
             << std::setw(2) << whole % kMinutesPerHour << " h";
    }
    return text.str();
}

}  // namespace marrowpress
