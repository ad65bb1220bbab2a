#include "cli/check_command.h"

#include <memory>
#include <ostream>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/findings_report.h"
#include "cli/input_faults.h"
#include "cli/output_folder.h"
#include "cli/profile_set.h"
#include "cli/publication_report.h"
#include "cli/publish_paths.h"
#include "cli/repeated_run.h"
#include "cli/run_measures.h"
#include "cli/scratch_run.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// On standard output there is nothing to look at.
CheckOptions withoutStandardOutput(CheckOptions options) {
    if (options.output == kStandardOutput) {
        options.output.clear();
    }
    return options;
}

/// With the filters of runs of their own behind the others.
PublishOptions asPublish(const CheckOptions& options) {
    PublishOptions publish;
    static_cast<RunOptions&>(publish) = static_cast<const RunOptions&>(options);
    publish.filters.insert(publish.filters.end(), options.eachFilters.begin(),
                           options.eachFilters.end());
    return publish;
}

/// One call of the command.
class Checking {
public:
    Checking(const CheckOptions& options, const Streams& streams, const RunRecording* recording)
        : options_(withoutStandardOutput(options)),
          streams_(streams),
          recording_(recording),
          paths_(resolvePublishPaths(options_)),
          measures_(options_.diagnostics) {}

    ExitCode run();

private:
    std::unique_ptr<PublicationReport> makePage() const;
    void startRecording();
    void gather(const Observation& observation, PublicationReport* page) const;
    ScratchRun runWith(const ProfileSet& profile, PublicationReport* page);
    std::vector<ProfileSet> readProfiles() const;
    std::optional<std::string> findFault(const std::vector<ProfileSet>& profiles,
                                         const FindingsReport& report) const;
    std::optional<std::string> findOutputFault() const;

    CheckOptions options_;
    const Streams& streams_;
    const RunRecording* recording_;
    PublishPaths paths_;
    RunMeasures measures_;
    std::unique_ptr<ResultRecorder> recorder_;  ///< Null while nobody wants the result.
};

ExitCode Checking::run() {
    // What is read from here on may be changed meanwhile.
    startRecording();
    const FindingsReport report(options_.diagnostics, paths_.map.string(),
                                fs::current_path().string());
    const std::vector<ProfileSet> profiles = readProfiles();
    if (const std::optional<std::string> fault = findFault(profiles, report)) {
        streams_.err << usageErrorText("check", *fault);
        return ExitCode::kWrongUsage;
    }
    if (recording_) {
        if (const std::optional<ExitCode> known = recording_->answer(report)) {
            return measures_.finish(*known, "marrowpress check", streams_);
        }
    }
    RunDisplay display(options_.diagnostics, streams_.err);
    const std::unique_ptr<PublicationReport> page = makePage();
    RunTotal total;
    for (const ProfileSet& profile : profiles) {
        runInScratch(runWith(profile, page.get()), display, total);
    }
    FurtherWriting further{writingOf(page.get()), {}};
    if (recorder_) {
        recorder_->finishRun(total.status);
        recorder_->lookAt(total.places);
        recording_->demandSameSources(*recorder_);
        further.result = [this](const std::vector<Finding>& all, const FindingSummary& summary) {
            recording_->take(recorder_->finish(all, summary, {}));
        };
    }
    const ExitCode code = report.write(total.list, total.droppedFaults, total.topics, total.code,
                                       streams_.err, further);
    return measures_.finish(code, "marrowpress check", streams_);
}

void Checking::startRecording() {
    if (recording_) {
        const PublishOptions publish = asPublish(options_);
        const PublishPaths paths = resolvePublishPaths(publish);
        recorder_ = std::make_unique<ResultRecorder>(
            recording_->id, identityOf("check", publish, paths, options_.eachFilters.size()),
            paths);
    }
}

ScratchRun Checking::runWith(const ProfileSet& profile, PublicationReport* page) {
    ScratchRun run{options_, paths_, profile, /*hasFindings=*/true, {}, {}, measures_.clock()};
    if (page || recorder_) {
        run.watch = [this, page](const Observation& met) { gather(met, page); };
    }
    if (recorder_) {
        run.onCatalog = [this](const std::string& path) { recorder_->addCatalog(path); };
    }
    return run;
}

void Checking::gather(const Observation& observation, PublicationReport* page) const {
    if (page) {
        page->observe(observation);
    }
    if (recorder_) {
        recorder_->observe(observation);
        recording_->notePhase(observation);
    }
}

/// Null unless somebody wants it.
std::unique_ptr<PublicationReport> Checking::makePage() const {
    if (!options_.diagnostics.report) {
        return nullptr;
    }
    return std::make_unique<PublicationReport>(ReportSetting{/*isCheck=*/true,
                                                             options_.isForPrint,
                                                             paths_.map,
                                                             {},
                                                             pathTexts(paths_.filters),
                                                             fs::current_path().string()});
}

/// Those of each run: one, unless each of several filters has its own.
std::vector<ProfileSet> Checking::readProfiles() const {
    const std::vector<NamedPath> common = filtersOf(options_, paths_);
    std::vector<ProfileSet> profiles;
    if (options_.eachFilters.empty()) {
        profiles.emplace_back(common, options_.allowsMissingFilter);
    }
    for (const std::string& filter : options_.eachFilters) {
        std::vector<NamedPath> files = common;
        files.push_back(namedPath("--each-filter", filter));
        profiles.emplace_back(files, options_.allowsMissingFilter);
    }
    return profiles;
}

std::optional<std::string> Checking::findFault(const std::vector<ProfileSet>& profiles,
                                               const FindingsReport& report) const {
    if (std::optional<std::string> fault = findInputFault(options_, paths_)) {
        return fault;
    }
    for (const ProfileSet& profile : profiles) {
        if (profile.fault()) {
            return profile.fault();
        }
    }
    if (report.fault()) {
        return report.fault();
    }
    if (std::optional<std::string> fault = findOutputFault()) {
        return fault;
    }
    RunFiles files{sourcesOf(options_, paths_), {}, false};
    for (const std::string& filter : options_.eachFilters) {
        files.inputs.push_back(namedPath("--each-filter", filter));
    }
    if (!options_.output.empty()) {
        files.outputs = outputsOf(options_, paths_);
    }
    std::vector<NamedPath> reports = report.files();
    addResultFile(options_, reports);
    return findReportFault(reports, files);
}

/// Why `publish` would refuse the output. A folder that is missing it would make.
std::optional<std::string> Checking::findOutputFault() const {
    if (options_.output.empty()) {
        return std::nullopt;
    }
    const NamedPath folder = outputFolderOf(options_, paths_);
    if (std::optional<std::string> fault = findOutputFolderFault(folder.path, folder.shown)) {
        return fault;
    }
    std::error_code ignored;
    if (!fs::exists(folder.path, ignored)) {
        return std::nullopt;
    }
    PublishOptions publish;
    static_cast<RunOptions&>(publish) = static_cast<const RunOptions&>(options_);
    return findPublishFault(publish, paths_);
}

}  // namespace

ExitCode runCheck(const CheckOptions& options, const Streams& streams,
                  const RunRecording* recording) {
    try {
        if (recording || !isRepeated(options)) {
            return Checking(options, streams, recording).run();
        }
        const PublishOptions publish = asPublish(options);
        return runRepeated(
            {"check", publish, options.eachFilters.size()}, streams,
            [&](const RunRecording& own) { return Checking(options, streams, &own).run(); });
    } catch (const ScratchError& failure) {
        streams.err << usageErrorText("check", failure.what());
        return ExitCode::kWrongUsage;
    }
}

}  // namespace marrowpress
