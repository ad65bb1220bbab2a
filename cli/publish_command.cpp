#include "cli/publish_command.h"

#include <chrono>
#include <memory>
#include <ostream>
#include <system_error>
#include <utility>

#include "cli/aside_composite.h"
#include "cli/displayed_run.h"
#include "cli/file_failure.h"
#include "cli/file_replacement.h"
#include "cli/findings_report.h"
#include "cli/input_faults.h"
#include "cli/make_rule.h"
#include "cli/movable_result.h"
#include "cli/output_folder.h"
#include "cli/profile_set.h"
#include "cli/publication_report.h"
#include "cli/publish_request.h"
#include "cli/repeated_run.h"
#include "cli/run_measures.h"
#include "cli/standard_output_composite.h"
#include "cli/unfinished_outputs.h"
#include "findings/catalogue.h"
#include "findings/shown_path.h"
#include "findings/wording.h"
#include "marrowpress/output_names.h"
#include "marrowpress/publish_status.h"
#include "runs/component_places.h"
#include "runs/dependency_list.h"
#include "runs/folder_wait.h"
#include "runs/public_ids.h"
#include "runs/unwritten_file.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr const char* kNoStandardOutput = "marrowpress: cannot write to standard output\n";

bool hasFindings(const PublishOptions& options) {
    return options.diagnostics.format != DiagnosticsFormat::kNone;
}

std::string failureLine(const std::string& fault) {
    return "marrowpress publish: " + fault + ".\n";
}

Finding noStandardOutputFinding() {
    Finding finding;
    finding.id = "MP107";
    finding.severity = *defaultSeverity(finding.id);
    finding.text = cannotWriteStandardOutputText();
    return finding;
}

Finding findingOf(const FileFailure& failure) {
    const std::string folder = fs::current_path().string();
    return failure.action() == FileAction::kRead
               ? unreadableFinding(failure.path(), failure.reason(), folder)
               : unwrittenFinding(failure.path(), failure.reason(), folder);
}

/// One call of the command, from the checks to the exit code.
class Publishing {
public:
    Publishing(const PublishOptions& options, const Streams& streams, const RunRecording* recording)
        : options_(options),
          givenOutput_(options.output),
          streams_(streams),
          recording_(recording),
          measures_(options_.diagnostics) {
        if (options.output == kStandardOutput) {
            standardOutput_ = std::make_unique<StandardOutputComposite>();
            options_.output = standardOutput_->path().string();
        }
        paths_ = resolvePublishPaths(options_);
        if (options_.depfile) {
            dependencies_ = std::make_unique<DependencyList>(paths_.map);
        }
        if (options_.diagnostics.report) {
            page_ = std::make_unique<PublicationReport>(
                ReportSetting{/*isCheck=*/false, options_.isForPrint, paths_.map,
                              standardOutput_ ? std::string() : paths_.output.string(),
                              pathTexts(paths_.filters), fs::current_path().string()});
        }
    }

    ExitCode run();

private:
    std::optional<std::string> findFault(const ProfileSet& profiles, const FindingsReport& report);
    ExitCode runObserved(const ProfileSet& profiles, const FindingsReport& report);
    ExitCode runUnobserved(const ProfileSet& profiles);
    RunOutcome runInTurn(const RunSetting& setting, RunDisplay& display);
    std::optional<std::string> findRunFault(const RunOutcome& outcome) const;
    std::vector<std::string> wantedFiles(const RunOutcome& outcome) const;
    void addRunFailure(const RunOutcome& outcome, FindingCollector& collector) const;
    std::string finishResult(const RunOutcome& outcome, FindingCollector* collector);
    void makeMovable(const RunOutcome& outcome);
    void takePlace(const RunOutcome& outcome);
    void goAside();
    void record(const std::vector<Finding>& findings, const FindingSummary& summary);
    RunSetting settingFor(const ProfileSet& profiles);
    void gather(const Observation& observation) const;
    void noteOutcome(const RunOutcome& outcome);
    void writeDepfile() const;
    FindingList takeFindings(FindingCollector& collector) const;
    bool giveResult(const RunOutcome& outcome) const;
    std::string resultText(const RunOutcome& outcome) const;
    std::string shownOutput() const;

    PublishOptions options_;
    std::string givenOutput_;  ///< As `options_` had it, before it was made elsewhere.
    const Streams& streams_;
    const RunRecording* recording_;
    PublishPaths paths_;
    std::unique_ptr<StandardOutputComposite> standardOutput_;
    std::unique_ptr<AsideComposite> aside_;
    std::unique_ptr<OutputFolder> folder_;
    std::unique_ptr<UnfinishedOutputs> unfinished_;
    std::unique_ptr<MovableResult> movable_;
    RunMeasures measures_;
    // Null while nobody wants them.
    std::unique_ptr<DependencyList> dependencies_;
    std::unique_ptr<PublicationReport> page_;
    std::unique_ptr<ResultRecorder> recorder_;
    std::vector<std::string> written_;  ///< What a good run has written, in its place.
    std::vector<std::string> copies_;   ///< Of media.
};

ExitCode Publishing::run() {
    // What is read from here on may be changed meanwhile.
    if (recording_) {
        recorder_ = std::make_unique<ResultRecorder>(
            recording_->id, identityOf("publish", options_, paths_), paths_);
    }
    const ProfileSet profiles(filtersOf(options_, paths_), options_.allowsMissingFilter);
    const FindingsReport report(options_.diagnostics, paths_.map.string(),
                                fs::current_path().string());
    if (const std::optional<std::string> fault = findFault(profiles, report)) {
        streams_.err << usageErrorText("publish", *fault);
        return ExitCode::kWrongUsage;
    }
    if (recording_) {
        if (const std::optional<ExitCode> known = recording_->answer(report)) {
            return measures_.finish(*known, "marrowpress publish", streams_);
        }
    }
    if (recording_ && recording_->isMadeAside && !isFlatBook(options_)) {
        goAside();
    }
    const ExitCode code =
        hasFindings(options_) ? runObserved(profiles, report) : runUnobserved(profiles);
    return measures_.finish(code, "marrowpress publish", streams_);
}

/// Why nothing is started; empty when it may be. Makes the output's folder when all else is well.
std::optional<std::string> Publishing::findFault(const ProfileSet& profiles,
                                                 const FindingsReport& report) {
    if (std::optional<std::string> fault = findInputFault(options_, paths_)) {
        return fault;
    }
    for (const auto& fault : {profiles.fault(), report.fault()}) {
        if (fault) {
            return fault;
        }
    }
    const NamedPath folder = outputFolderOf(options_, paths_);
    folder_ = std::make_unique<OutputFolder>(folder.path, folder.shown);
    if (folder_->fault()) {
        return folder_->fault();
    }
    if (std::optional<std::string> fault = findPublishFault(options_, paths_)) {
        return fault;
    }
    movable_ = std::make_unique<MovableResult>(
        options_, paths_,
        ResultPlace{standardOutput_ ? fs::current_path() : folder.path, !isFlatBook(options_)});
    if (movable_->fault()) {
        return movable_->fault();
    }
    std::vector<NamedPath> reports = report.files();
    if (options_.depfile) {
        reports.push_back(namedPath("--depfile", *options_.depfile));
    }
    addResultFile(options_, reports);
    return findReportFault(
        reports, {sourcesOf(options_, paths_), outputsOf(options_, paths_), isFlatBook(options_)});
}

/// From here on the output is the one aside.
void Publishing::goAside() {
    aside_ = std::make_unique<AsideComposite>(paths_.output);
    options_.output = aside_->path().string();
    paths_.output = aside_->path();
}

/// Without findings.
RunSetting Publishing::settingFor(const ProfileSet& profiles) {
    RunSetting setting{
        buildRequest(options_, paths_, profiles.file()), options_.catalogs, nullptr, {}, {}, {}};
    setting.clock = measures_.clock();
    if (dependencies_ || page_ || recorder_) {
        setting.watch = [this](const Observation& met) { gather(met); };
        setting.watchReferences = setting.watch;
    }
    if (dependencies_ || recorder_) {
        setting.onCatalog = [this](const std::string& path) {
            if (dependencies_) {
                dependencies_->addCatalog(path);
            }
            if (recorder_) {
                recorder_->addCatalog(path);
            }
        };
    }
    return setting;
}

/// What is written beside the output.
void Publishing::gather(const Observation& observation) const {
    if (dependencies_) {
        dependencies_->observe(observation);
    }
    if (page_) {
        page_->observe(observation);
    }
    if (recorder_) {
        recorder_->observe(observation);
        recording_->notePhase(observation);
    }
}

/// Writes the rule of the output, if anybody wants it.
///
/// @throws FileFailure
void Publishing::writeDepfile() const {
    if (!dependencies_) {
        return;
    }
    dependencies_->addProfiles(paths_.filters);
    dependencies_->finish();
    replaceFile(
        fs::absolute(*options_.depfile),
        makeRule(givenOutput_, prerequisitesOf(*dependencies_, fs::current_path().string())));
}

ExitCode Publishing::runUnobserved(const ProfileSet& profiles) {
    RunDisplay display(options_.diagnostics, streams_.err);
    const RunOutcome outcome = runInTurn(settingFor(profiles), display);
    noteOutcome(outcome);
    const std::string failure = finishResult(outcome, nullptr);
    streams_.err << failure;
    const ExitCode code = failure.empty() ? ExitCode::kSuccess : ExitCode::kRunFailed;
    FindingSummary summary;
    summary.exit = static_cast<int>(code);
    record({}, summary);
    return code;
}

/// What a run aside met has to be what it would meet in its place: there is the output of an
/// earlier run, perhaps, and nobody else's key space document.
void Publishing::noteOutcome(const RunOutcome& outcome) {
    if (!recorder_) {
        return;
    }
    recorder_->finishRun(outcome.status);
    recording_->demandSameSources(*recorder_);
    if (!aside_) {
        return;
    }
    const fs::path keySpace = aside_->place().parent_path() / kKeySpaceDocName;
    for (const std::string& path : {aside_->place().string(), keySpace.string()}) {
        if (recorder_->dependencies().find(path)) {
            throw NeedsItsPlace();
        }
    }
}

/// As of the place of the output.
FindingList Publishing::takeFindings(FindingCollector& collector) const {
    if (!aside_) {
        return std::move(collector.list());
    }
    FindingList list;
    list.addDropped(collector.list());
    for (Finding& finding : collector.list().take()) {
        list.add(aside_->asOfPlace(std::move(finding)));
    }
    return list;
}

void Publishing::record(const std::vector<Finding>& findings, const FindingSummary& summary) {
    if (recorder_) {
        std::vector<std::string> outputs = written_;
        outputs.insert(outputs.end(), copies_.begin(), copies_.end());
        recording_->take(recorder_->finish(findings, summary, outputs));
    }
}

ExitCode Publishing::runObserved(const ProfileSet& profiles, const FindingsReport& report) {
    FindingContext context{fs::current_path().string(), profiles.names(),
                           shownCatalogs(options_.catalogs), options_.allowsMissingFilter,
                           findListedCatalogFault(options_.catalogs)};
    FindingCollector collector(std::move(context), options_.diagnostics.severities);
    ComponentPlaces components(
        {paths_.output, paths_.output, options_.isAtOneLocation, /*isOnlyLookedAt=*/false});
    RunDisplay display(options_.diagnostics, streams_.err);
    RunSetting setting = settingFor(profiles);
    setting.collector = &collector;
    setting.watch = [&, watchFiles = setting.watch](const Observation& observation) {
        components.observe(observation);
        unfinished_->observe(observation);
        if (watchFiles) {
            watchFiles(observation);
        }
    };
    const RunOutcome outcome = runInTurn(setting, display);
    noteOutcome(outcome);

    collector.finish();
    components.addFindings(collector);
    profiles.addFindings(collector);
    const std::string failure = finishResult(outcome, &collector);
    if (!isForTools(options_.diagnostics)) {
        streams_.err << failure;
    }
    FindingList findings = takeFindings(collector);
    return report.write(
        findings, collector.facts().droppedFaults(), collector.facts().topicCount(),
        failure.empty() ? ExitCode::kSuccess : ExitCode::kRunFailed, streams_.err,
        {writingOf(page_.get()), [this](const std::vector<Finding>& all,
                                        const FindingSummary& summary) { record(all, summary); }});
}

/// Runs the request when no other run writes into the folder. What a run leaves unfinished goes
/// with a signal only while it works: before, all that stands there is somebody else's.
RunOutcome Publishing::runInTurn(const RunSetting& setting, RunDisplay& display) {
    const std::string folder = outputFolderOf(options_, paths_).path.string();
    const auto end = std::chrono::steady_clock::now() + kLongestFolderWait;
    return marrowpress::runInTurn(
        folder, [&] { return waitForFolder(folder, end); },
        [&] {
            unfinished_ = std::make_unique<UnfinishedOutputs>(outputsOf(options_, paths_));
            RunOutcome outcome = runRequest(setting, display);
            unfinished_.reset();
            return outcome;
        });
}

/// The sentence about a run that came to nothing; empty when all of its output was written.
std::optional<std::string> Publishing::findRunFault(const RunOutcome& outcome) const {
    if (std::optional<std::string> fault = findStatusFault(outcome)) {
        return fault;
    }
    if (outcome.hasUnwrittenDocument) {
        return "a document could not be written";
    }
    if (isFlatBook(options_) && !outcome.components) {
        return "the client did not say what it wrote";
    }
    return findMissingFile(wantedFiles(outcome));
}

/// Gives the result of a good run. Else says why there is none in a line, and in a finding for
/// `collector`, which may be null.
std::string Publishing::finishResult(const RunOutcome& outcome, FindingCollector* collector) {
    if (const std::optional<std::string> fault = findRunFault(outcome)) {
        if (collector) {
            addRunFailure(outcome, *collector);
        }
        return failureLine(*fault);
    }
    try {
        makeMovable(outcome);
        takePlace(outcome);
        if (!giveResult(outcome)) {
            if (collector) {
                collector->add(noStandardOutputFinding());
            }
            return kNoStandardOutput;
        }
        writeDepfile();
    } catch (const FileFailure& failure) {
        if (collector) {
            collector->add(findingOf(failure));
        }
        return failureLine(failure.what());
    }
    return {};
}

/// @throws FileFailure
void Publishing::makeMovable(const RunOutcome& outcome) {
    if (!movable_->isWanted()) {
        return;
    }
    const FolderHold hold(outputFolderOf(options_, paths_).path.string(),
                          std::chrono::steady_clock::now() + kLongestFolderWait);
    if (hold.isTaken()) {
        throw FileFailure(FileAction::kWrite, paths_.output.string(), kFolderIsTaken);
    }
    copies_ = movable_->make(wantedFiles(outcome));
}

/// @throws FileFailure
void Publishing::takePlace(const RunOutcome& outcome) {
    written_ = wantedFiles(outcome);
    if (!aside_) {
        return;
    }
    if (aside_->isTold()) {
        throw NeedsItsPlace();
    }
    aside_->moveToPlace();
    written_ = {aside_->place().string()};
}

/// What a good run has written.
std::vector<std::string> Publishing::wantedFiles(const RunOutcome& outcome) const {
    return isFlatBook(options_) ? outcome.components.value_or(std::vector<std::string>())
                                : std::vector<std::string>{paths_.output.string()};
}

/// Says in a finding why there is no output, if none says so yet.
void Publishing::addRunFailure(const RunOutcome& outcome, FindingCollector& collector) const {
    const std::string output = standardOutput_ ? paths_.map.string() : paths_.output.string();
    addFailure(outcome, paths_.map.string(), output, collector);
    if (findStatusFault(outcome) || outcome.hasUnwrittenDocument) {
        return;
    }
    for (const std::string& path : wantedFiles(outcome)) {
        if (findMissingFile({path})) {
            addUnwritten(path, "", collector);
        }
    }
}

bool Publishing::giveResult(const RunOutcome& outcome) const {
    return standardOutput_ ? standardOutput_->copyTo(streams_)
                           : writeOutput(streams_, resultText(outcome));
}

/// What a good run gives on standard output.
std::string Publishing::resultText(const RunOutcome& outcome) const {
    if (!isFlatBook(options_)) {
        return shownOutput() + "\n";
    }
    std::string text;
    for (const std::string& component : *outcome.components) {
        text += component + "\n";
    }
    return text;
}

/// The output as it was given, unless the client reads that as another file.
std::string Publishing::shownOutput() const {
    std::error_code ignored;
    const fs::path& place = aside_ ? aside_->place() : paths_.output;
    return fs::equivalent(givenOutput_, place, ignored) ? givenOutput_ : place.string();
}

}  // namespace

std::optional<std::string> findMissingFile(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        std::error_code ignored;
        if (fs::is_regular_file(path, ignored)) {
            continue;
        }
        return "the run ended, but " + path + " was not written";
    }
    return std::nullopt;
}

ExitCode runPublish(const PublishOptions& options, const Streams& streams,
                    const RunRecording* recording) {
    try {
        if (recording || !isRepeated(options)) {
            return Publishing(options, streams, recording).run();
        }
        return runRepeated({"publish", options}, streams, [&](const RunRecording& own) {
            return Publishing(options, streams, &own).run();
        });
    } catch (const ScratchError& failure) {
        streams.err << usageErrorText("publish", failure.what());
        return ExitCode::kWrongUsage;
    }
}

}  // namespace marrowpress
