#include "cli/survey.h"

#include <filesystem>
#include <optional>
#include <ostream>
#include <vector>

#include "cli/findings_report.h"
#include "cli/input_faults.h"
#include "cli/profile_set.h"
#include "cli/publish_paths.h"
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
    return findReportFault(report.files(), {sourcesOf(options, paths), {}, false});
}

ExitCode run(const Survey& survey, const Streams& streams) {
    const RunOptions& options = survey.options;
    const PublishPaths paths = resolvePublishPaths(options);
    const ProfileSet profiles(filtersOf(options, paths), options.allowsMissingFilter);
    const FindingsReport report(options.diagnostics, paths.map.string(),
                                std::filesystem::current_path().string());
    if (const std::optional<std::string> fault = findFault(options, paths, profiles, report)) {
        streams.err << usageErrorText(survey.command, *fault);
        return ExitCode::kWrongUsage;
    }
    RunDisplay display(options.diagnostics, streams.err);
    const bool hasFindings = options.diagnostics.format != DiagnosticsFormat::kNone;
    RunTotal total;
    runInScratch({options, paths, profiles, hasFindings, survey.watch, survey.onCatalog, nullptr,
                  /*endsBeforeOutput=*/true},
                 display, total);
    const ExitCode code =
        report.write(total.list, total.droppedFaults, total.topics, total.code, streams.err);
    return code == ExitCode::kSuccess ? survey.giveResult() : code;
}

}  // namespace

ExitCode runSurvey(const Survey& survey, const Streams& streams) {
    try {
        return run(survey, streams);
    } catch (const ScratchError& failure) {
        streams.err << usageErrorText(survey.command, failure.what());
        return ExitCode::kWrongUsage;
    }
}

}  // namespace marrowpress
