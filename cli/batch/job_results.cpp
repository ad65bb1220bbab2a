#include "cli/batch/job_results.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "cli/publish_paths.h"
#include "cli/result_recorder.h"
#include "findings/catalogue.h"
#include "findings/fold.h"
#include "findings/language.h"
#include "results/file_digest.h"
#include "results/result_json.h"

namespace marrowpress {
namespace {

Finding batchFinding(const std::string& id, const std::string& text, const std::string& file) {
    Finding finding;
    finding.id = id;
    finding.severity = *defaultSeverity(id);
    finding.text = text;
    finding.place.file = file;
    return finding;
}

/// The first line that a process wrote, without what every such line begins with.
std::string sentenceIn(const std::string& errors) {
    std::string line = errors.substr(0, errors.find('\n'));
    if (line.starts_with(kProgramName)) {
        const std::size_t colon = line.find(": ");
        line.erase(0, colon == std::string::npos ? 0 : colon + 2);
    }
    return line;
}

bool hasFailed(const JobEnd& end) {
    return stateOfExit(end.exit) == ResultState::kFailed;
}

std::string endText(const JobEnd& end, std::chrono::seconds longest) {
    if (end.isOutOfTime) {
        return translated("Der Auftrag hat länger gedauert als {0} s und wurde beendet",
                          {std::to_string(longest.count())});
    }
    if (end.signal) {
        return translated("Der Auftrag wurde vom Signal {0} beendet",
                          {std::to_string(*end.signal)});
    }
    // Of a run that came to its end, and whose result could not be told, that is no reason.
    const std::string sentence = hasFailed(end) ? sentenceIn(end.errors) : std::string();
    return sentence.empty() ? translated("Der Auftrag endete ohne Ergebnis mit dem Code {0}",
                                         {std::to_string(end.exit)})
                            : translated("Der Auftrag kam zu nichts: {0}", {sentence});
}

/// What is known of a job that told nothing: when one of these changes, it may come to something.
void addSources(const Job& job, RunResult& result) {
    const PublishPaths paths = resolvePublishPaths(job.options);
    result.dependencies.push_back({paths.map.string(), "map reference", "absent", {}, {}});
    for (const std::filesystem::path& filter : paths.filters) {
        result.dependencies.push_back({filter.string(), "DITAVAL", "absent", {}, {}});
    }
    for (ResultDependency& file : result.dependencies) {
        const std::optional<FileDigest> digest = digestOf(file.file);
        result.run.files.emplace_back();
        if (digest) {
            file.state = "read";
            file.sha256 = digest->sha256;
            result.run.files.back() = KnownFile{digest->stamp, digest->xxh128};
        }
    }
}

std::optional<RunResult> toldResult(const JobEnd& end) {
    if (end.result.empty() || end.signal) {
        return std::nullopt;
    }
    try {
        return parseResult(end.result);
    } catch (const ResultError&) {
        return std::nullopt;
    }
}

}  // namespace

WantedRun wantedRunOf(const Plan& plan, const Job& job) {
    PublishOptions options = job.options;
    options.catalogs = plan.catalogs;
    options.diagnostics = plan.diagnostics;
    RunIdentity identity =
        identityOf(plan.isCheck ? "check" : "publish", options, resolvePublishPaths(options));
    return {std::move(identity.request), std::move(identity.options), versionsText()};
}

RunResult resultOf(const Plan& plan, const Job& job, const JobEnd& end,
                   std::chrono::seconds longest) {
    if (std::optional<RunResult> told = toldResult(end)) {
        return std::move(*told);
    }
    WantedRun wanted = wantedRunOf(plan, job);
    RunResult result;
    result.id = job.id;
    result.exit = hasFailed(end) ? end.exit : kExitOfFailedRun;
    result.signal = end.signal;
    result.phase = end.phase;
    result.request = std::move(wanted.request);
    result.options = std::move(wanted.options);
    result.versions = std::move(wanted.versions);
    result.findings.push_back(batchFinding("MP301", endText(end, longest), job.options.map));
    addSources(job, result);
    return result;
}

JobOutcome outcomeOf(const RunResult& result) {
    const FindingSummary summary = summarize(result.findings);
    JobOutcome outcome;
    outcome.state = JobOutcome::State::kEnded;
    outcome.result = result.state;
    outcome.exit = result.exit;
    outcome.errors = summary.errors;
    outcome.warnings = summary.warnings;
    outcome.seconds = result.run.seconds;
    outcome.cpuSeconds = result.run.cpuSeconds;
    outcome.memory = result.run.memory;
    return outcome;
}

RunResult withConflict(RunResult result, const std::string& other, const std::string& path) {
    constexpr int kExitOfFailedJob = 1;
    result.state = ResultState::kFailed;
    result.exit = kExitOfFailedJob;
    Finding finding = batchFinding("MP302",
                                   translated("Dieser Auftrag und `{0}` stören einander: der eine "
                                              "schreibt, was der andere liest",
                                              {other}),
                                   path);
    // Whoever looks at the results again finds the same.
    const bool isKnown = std::any_of(
        result.findings.begin(), result.findings.end(), [&finding](const Finding& known) {
            return known.id == finding.id && known.text == finding.text &&
                   known.place == finding.place;
        });
    if (!isKnown) {
        result.findings.push_back(std::move(finding));
    }
    return result;
}

bool lackedMemory(const JobEnd& end, const RunResult& result, std::uint64_t memoryKills) {
    const bool isKilledByKernel = end.signal == SIGKILL && !end.isOutOfTime && memoryKills > 0;
    return isKilledByKernel || result.run.isMemoryShort;
}

}  // namespace marrowpress
