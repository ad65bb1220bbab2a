#include "cli/survey.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <vector>

#include "cli/findings_report.h"
#include "cli/input_faults.h"
#include "cli/profile_set.h"
#include "cli/publish_paths.h"
#include "cli/repeated_run.h"
#include "cli/result_recorder.h"
#include "cli/scratch_run.h"

namespace marrowpress {
namespace {

std::optional<std::string> findFault(const RunOptions& options, const PublishPaths& paths,
                                     const ProfileSet& profiles, const FindingsReport& report) {
    if (std::optional<std::string> fault = findInputFault(options, paths)) {
        return fault;
    }
    for (const auto& fault : {profiles.fault(), report.fault()}) {
        if (fault) {
            return fault;
        }
    }
    std::vector<NamedPath> reports = report.files();
    addResultFile(options, reports);
    return findReportFault(reports, {sourcesOf(options, paths), {}, false});
}

/// Surveys have no options but those of every run.
PublishOptions asPublication(const RunOptions& options) {
    PublishOptions publish;
    static_cast<RunOptions&>(publish) = options;
    return publish;
}

/// Gives the result, and remembers it as that of the run.
ExitCode giveRecorded(const Survey& survey, const Streams& streams, RunResult& result) {
    std::ostringstream text;
    const ExitCode code = survey.giveResult({text, streams.err});
    result.text = text.str();
    return writeResult(streams, *result.text) ? code : ExitCode::kRunFailed;
}

/// @param recording  May be null.
ExitCode run(const Survey& survey, const Streams& streams, const RunRecording* recording) {
    const RunOptions& options = survey.options;
    const PublishPaths paths = resolvePublishPaths(options);
    std::unique_ptr<ResultRecorder> recorder;
    if (recording) {
        recorder = std::make_unique<ResultRecorder>(
            recording->id,
            identityOf(survey.command, asPublication(options), paths, 0, survey.wish), paths);
    }
    const ProfileSet profiles(filtersOf(options, paths), options.allowsMissingFilter);
    const FindingsReport report(options.diagnostics, paths.map.string(),
                                std::filesystem::current_path().string());
    if (const std::optional<std::string> fault = findFault(options, paths, profiles, report)) {
        streams.err << usageErrorText(survey.command, *fault);
        return ExitCode::kWrongUsage;
    }
    if (recording) {
        if (const std::optional<ExitCode> known = recording->answer(report)) {
            return *known;
        }
    }
    const auto watch = [&](const Observation& met) {
        survey.watch(met);
        if (recorder) {
            recorder->observe(met);
        }
    };
    const auto onCatalog = [&](const std::string& path) {
        if (survey.onCatalog) {
            survey.onCatalog(path);
        }
        if (recorder) {
            recorder->addCatalog(path);
        }
    };
    RunDisplay display(options.diagnostics, streams.err);
    const bool hasFindings = options.diagnostics.format != DiagnosticsFormat::kNone;
    RunTotal total;
    runInScratch({options, paths, profiles, hasFindings, watch, onCatalog, nullptr,
                  /*endsBeforeOutput=*/true},
                 display, total);
    std::optional<RunResult> result;
    FurtherWriting further;
    if (recorder) {
        recorder->finishRun(total.status);
        recording->demandSameSources(*recorder);
        further.result = [&](const std::vector<Finding>& all, const FindingSummary& summary) {
            result = recorder->finish(all, summary, {});
        };
    }
    ExitCode code = report.write(total.list, total.droppedFaults, total.topics, total.code,
                                 streams.err, further);
    if (code == ExitCode::kSuccess) {
        code = result ? giveRecorded(survey, streams, *result) : survey.giveResult(streams);
    }
    // What was refused only then may be given the next time.
    if (result && code == static_cast<ExitCode>(result->exit)) {
        recording->take(*result);
    }
    return code;
}

}  // namespace

ExitCode runSurvey(const Survey& survey, const Streams& streams) {
    try {
        if (!isRepeated(survey.options)) {
            return run(survey, streams, nullptr);
        }
        const PublishOptions publication = asPublication(survey.options);
        return runRepeated({survey.command, publication, 0, survey.wish}, streams,
                           [&](const RunRecording& recording) {
                               if (survey.forget) {
                                   survey.forget();
                               }
                               return run(survey, streams, &recording);
                           });
    } catch (const ScratchError& failure) {
        streams.err << usageErrorText(survey.command, failure.what());
        return ExitCode::kWrongUsage;
    }
}

}  // namespace marrowpress
