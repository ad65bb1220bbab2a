#include "cli/repeated_run.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <ostream>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/file_failure.h"
#include "cli/file_replacement.h"
#include "cli/findings_report.h"
#include "cli/publish_paths.h"
#include "cli/run_display.h"
#include "findings/fold.h"
#include "marrowpress/output_names.h"
#include "results/file_digest.h"
#include "results/result_json.h"
#include "results/up_to_date.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// How often a run is made whose sources were changed while it read them.
constexpr unsigned kMostRuns = 3;

/// The folder for what programs remember, as the XDG Base Directory Specification has it; empty
/// where there is no home.
fs::path stateFolder() {
    const char* const named = std::getenv("XDG_STATE_HOME");
    if (named && *named == '/') {
        return fs::path(named) / kProgramName;
    }
    const char* const home = std::getenv("HOME");
    return home && *home == '/' ? fs::path(home) / ".local/state" / kProgramName : fs::path();
}

/// Whether a run that failed would fail again, as far as its findings tell. What the sources are no
/// cause of, as a full disk, may be over.
bool mayHold(const RunResult& result) {
    if (result.state != ResultState::kFailed) {
        return true;
    }
    const bool isOfTheSources = result.status.value_or(0) != 0 && !result.run.isMemoryShort;
    return isOfTheSources && !result.findings.empty() &&
           std::none_of(result.findings.begin(), result.findings.end(),
                        [](const Finding& finding) { return finding.id == "MP107"; });
}

/// One call, from the last result to the next.
class Repetition {
public:
    Repetition(const RepeatedRun& repeated, const Streams& streams)
        : repeated_(repeated),
          options_(repeated.options),
          streams_(streams),
          paths_(resolvePublishPaths(options_)),
          file_(resultFile()) {}

    ExitCode run(const std::function<ExitCode(const RunRecording&)>& make) const;

private:
    fs::path resultFile() const;
    std::optional<RunResult> lastResult() const;
    ExitCode showAgain(RunResult result, const FindingsReport& report) const;
    std::string shownOutputs(const RunResult& result) const;
    std::vector<std::string> reportFiles() const;
    std::vector<std::string> comparedFiles() const;
    RunResult completed(RunResult result, const ResultRun& before, unsigned tries) const;
    bool areReportsThere(const RunResult& result) const;
    bool keep(const RunResult& result) const;

    const RepeatedRun& repeated_;
    const PublishOptions& options_;
    const Streams& streams_;
    PublishPaths paths_;
    fs::path file_;  ///< Empty when the result has no place.
};

fs::path Repetition::resultFile() const {
    if (options_.result) {
        return fs::absolute(*options_.result);
    }
    const fs::path folder = stateFolder();
    const std::string key =
        repeated_.command + "\n" + paths_.map.string() + "\n" + paths_.output.string();
    return folder.empty() ? folder : folder / (sha256Of(key) + ".json");
}

/// What else was asked for and cannot be made from the result. Absolute.
std::vector<std::string> Repetition::reportFiles() const {
    const DiagnosticsOptions& diagnostics = options_.diagnostics;
    std::vector<std::string> files;
    for (const std::optional<std::string>* const file :
         {&options_.depfile, &diagnostics.report, &diagnostics.timings}) {
        if (*file) {
            files.push_back(fs::absolute(**file).string());
        }
    }
    return files;
}

/// What findings are compared with. Absolute.
std::vector<std::string> Repetition::comparedFiles() const {
    const std::optional<std::string>& baseline = options_.diagnostics.baseline;
    return baseline ? std::vector{fs::absolute(*baseline).string()} : std::vector<std::string>();
}

/// Whether they are as that very run has written them, or has met them.
bool Repetition::areReportsThere(const RunResult& result) const {
    std::vector<std::string> files = reportFiles();
    for (std::string& file : comparedFiles()) {
        files.push_back(std::move(file));
    }
    return std::all_of(files.begin(), files.end(), [&result](const std::string& file) {
        return isReportThere(file, result.run);
    });
}

/// The last run's, if it still holds.
std::optional<RunResult> Repetition::lastResult() const {
    std::error_code ignored;
    if (!fs::is_regular_file(file_, ignored) || options_.diagnostics.showsStatistics) {
        return std::nullopt;
    }
    try {
        RunResult result = readResult(file_);
        RunIdentity identity =
            identityOf(repeated_.command, options_, paths_, repeated_.ownFilters, repeated_.wish);
        const WantedRun wanted{std::move(identity.request), std::move(identity.options),
                               versionsText()};
        // Findings name files as seen from there.
        const bool isSameFolder =
            result.findings.empty() || result.run.folder == fs::current_path().string();
        const bool isCurrent = mayHold(result) && isSameFolder && areReportsThere(result) &&
                               FileComparison().isUpToDate(result, wanted);
        return isCurrent ? std::optional(std::move(result)) : std::nullopt;
    } catch (const ResultError& fault) {
        streams_.err << "marrowpress: " << file_.string() << " counts as absent: " << fault.what()
                     << ".\n";
        return std::nullopt;
    }
}

ExitCode Repetition::showAgain(RunResult result, const FindingsReport& report) const {
    FindingList list;
    for (Finding& finding : result.findings) {
        // They have been folded, which of them by file is not remembered.
        finding.isPerFile = true;
        list.add(std::move(finding));
    }
    report.write(list, result.dropped, result.topics,
                 result.state == ResultState::kFailed ? ExitCode::kRunFailed : ExitCode::kSuccess,
                 streams_.err);
    if (!isForTools(options_.diagnostics) && !options_.diagnostics.isQuiet) {
        streams_.err << "up to date\n";
    }
    return writeResult(streams_, shownOutputs(result)) ? static_cast<ExitCode>(result.exit)
                                                       : ExitCode::kRunFailed;
}

/// As the run itself has shown them.
std::string Repetition::shownOutputs(const RunResult& result) const {
    if (result.text) {
        return *result.text;
    }
    if (result.outputs.empty() || !isFlatBook(options_)) {
        return result.outputs.empty() ? std::string() : options_.output + "\n";
    }
    std::string lines;
    for (const ResultOutput& output : result.outputs) {
        // Behind the components stand copies of media.
        if (output.path.ends_with(kComponentExtension)) {
            lines += output.path + "\n";
        }
    }
    return lines;
}

/// False when it could not be kept.
bool Repetition::keep(const RunResult& result) const {
    if (file_.empty()) {
        return true;
    }
    try {
        if (!options_.result) {
            fs::create_directories(file_.parent_path());
        }
        replaceFile(file_, resultText(result));
        return true;
    } catch (const FileFailure& failure) {
        streams_.err << "marrowpress: " << failure.what() << ".\n";
    } catch (const fs::filesystem_error& failure) {
        streams_.err << "marrowpress: cannot write " << file_.string() << ": "
                     << failure.code().message() << ".\n";
    }
    return false;
}

/// @param before  What findings were compared with, from before the run.
RunResult Repetition::completed(RunResult result, const ResultRun& before, unsigned tries) const {
    result.run.tries = tries;
    result.run.folder = fs::current_path().string();
    result.run.reports = before.reports;
    for (const std::string& file : reportFiles()) {
        rememberReport(file, result.run);
    }
    return result;
}

ExitCode Repetition::run(const std::function<ExitCode(const RunRecording&)>& make) const {
    ExitCode code = ExitCode::kSuccess;
    for (unsigned runs = 1; runs <= kMostRuns; ++runs) {
        std::optional<RunResult> result;
        RunRecording recording;
        recording.id = paths_.map.stem().string();
        recording.take = [&result](const RunResult& made) { result = made; };
        if (runs == 1 && options_.isOnlyIfChanged) {
            recording.findAnswer = [this](const FindingsReport& report) {
                std::optional<RunResult> last = lastResult();
                return last ? std::optional(showAgain(std::move(*last), report)) : std::nullopt;
            };
        }
        recording.isMadeAgain = runs < kMostRuns;
        ResultRun before;
        for (const std::string& file : comparedFiles()) {
            rememberReport(file, before);
        }
        try {
            code = make(recording);
        } catch (const SourcesChanged&) {
            continue;
        }
        if (!result) {
            return code;
        }
        // A result that nobody asked for is for the next time only.
        return keep(completed(*std::move(result), before, runs)) || !options_.result
                   ? code
                   : ExitCode::kRunFailed;
    }
    return code;
}

}  // namespace

bool isRepeated(const RunOptions& options) {
    return options.isOnlyIfChanged || options.result;
}

void addResultFile(const RunOptions& options, std::vector<NamedPath>& reports) {
    if (options.result) {
        reports.push_back(namedPath("--result", *options.result));
    }
}

ExitCode runRepeated(const RepeatedRun& repeated, const Streams& streams,
                     const std::function<ExitCode(const RunRecording&)>& run) {
    return Repetition(repeated, streams).run(run);
}

}  // namespace marrowpress
