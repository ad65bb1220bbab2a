#include "cli/check_command.h"

#include <ostream>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/component_places.h"
#include "cli/findings_report.h"
#include "cli/input_faults.h"
#include "cli/map_run.h"
#include "cli/output_folder.h"
#include "cli/outside_fragments.h"
#include "cli/profile_set.h"
#include "cli/public_ids.h"
#include "cli/publish_command.h"
#include "cli/publish_paths.h"
#include "cli/scratch_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// The request of a check: everything is written into a private folder.
PublishOptions scratchOptions(const CheckOptions& options, const fs::path& folder) {
    PublishOptions publish;
    static_cast<RunOptions&>(publish) = static_cast<const RunOptions&>(options);
    publish.output = (isFlatBook(options) ? folder : folder / "composite.dita").string();
    publish.isAtOneLocation = isFlatBook(options);
    return publish;
}

/// On standard output there is nothing to look at.
CheckOptions withoutStandardOutput(CheckOptions options) {
    if (options.output == kStandardOutput) {
        options.output.clear();
    }
    return options;
}

/// One call of the command.
class Checking {
public:
    Checking(const CheckOptions& options, const Streams& streams)
        : options_(withoutStandardOutput(options)),
          streams_(streams),
          paths_(resolvePublishPaths(options_)) {}

    ExitCode run();

private:
    /// What all runs of the call have found.
    struct Total {
        FindingList list;
        std::size_t droppedFaults = 0;
        std::size_t topics = 0;
        ExitCode code = ExitCode::kSuccess;
    };

    std::vector<ProfileSet> readProfiles() const;
    std::optional<std::string> findFault(const std::vector<ProfileSet>& profiles,
                                         const FindingsReport& report) const;
    std::optional<std::string> findOutputFault() const;
    void checkOnce(const ProfileSet& profiles, RunDisplay& display, Total& total) const;

    CheckOptions options_;
    const Streams& streams_;
    PublishPaths paths_;
};

ExitCode Checking::run() {
    const FindingsReport report(options_.diagnostics, paths_.map.string(),
                                fs::current_path().string());
    const std::vector<ProfileSet> profiles = readProfiles();
    if (const std::optional<std::string> fault = findFault(profiles, report)) {
        streams_.err << usageErrorText("check", *fault);
        return ExitCode::kWrongUsage;
    }
    RunDisplay display(options_.diagnostics, streams_.err);
    Total total;
    for (const ProfileSet& profile : profiles) {
        checkOnce(profile, display, total);
    }
    return report.write(total.list, total.droppedFaults, total.topics, total.code, streams_.err);
}

/// Those of each run: one, unless each of several filters has its own.
std::vector<ProfileSet> Checking::readProfiles() const {
    std::vector<NamedPath> common;
    for (std::size_t index = 0; index < paths_.filters.size(); ++index) {
        common.push_back({"--filter", options_.filters[index], paths_.filters[index]});
    }
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
    return findReportFault(report.files(), files);
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

void Checking::checkOnce(const ProfileSet& profiles, RunDisplay& display, Total& total) const {
    const ScratchFolder scratch;
    const PublishOptions publish = scratchOptions(options_, scratch.path());
    const PublishPaths paths = resolvePublishPaths(publish);
    FindingContext context{fs::current_path().string(), profiles.names(),
                           shownCatalogs(options_.catalogs), options_.allowsMissingFilter,
                           findListedCatalogFault(options_.catalogs)};
    FindingCollector collector(std::move(context), options_.diagnostics.severities);
    ComponentPlaces components({paths.output, options_.output.empty() ? fs::path() : paths_.output,
                                options_.isAtOneLocation, /*isOnlyLookedAt=*/true});
    const RunOutcome outcome =
        runRequest({buildRequest(publish, paths, profiles.file()), options_.catalogs, &collector,
                    [&](const Observation& observation) { components.observe(observation); }},
                   display);
    collector.finish();
    components.addFindings(collector);
    profiles.addFindings(collector);
    addFailure(outcome, paths_.map.string(), paths_.map.string(), collector);

    OutsideFragments fragments(collector.context().currentFolder, options_.diagnostics.severities);
    total.list.addDropped(collector.list());
    for (Finding& finding : collector.list().take()) {
        total.list.add(fragments.lookedAt(std::move(finding)));
    }
    total.droppedFaults += collector.facts().droppedFaults();
    total.topics = std::max(total.topics, collector.facts().topicCount());
    if (findStatusFault(outcome) || outcome.hasUnwrittenDocument) {
        total.code = ExitCode::kRunFailed;
    }
}

}  // namespace

ExitCode runCheck(const CheckOptions& options, const Streams& streams) {
    try {
        return Checking(options, streams).run();
    } catch (const ScratchError& failure) {
        streams.err << usageErrorText("check", failure.what());
        return ExitCode::kWrongUsage;
    }
}

}  // namespace marrowpress
