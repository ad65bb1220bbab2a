#include "cli/scratch_run.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "cli/displayed_run.h"
#include "cli/publish_request.h"
#include "cli/scratch_folder.h"
#include "runs/component_places.h"
#include "runs/outside_fragments.h"
#include "runs/public_ids.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

PublishOptions scratchOptions(const RunOptions& options, const fs::path& folder) {
    PublishOptions publish;
    static_cast<RunOptions&>(publish) = options;
    publish.output = (isFlatBook(options) ? folder : folder / "composite.dita").string();
    publish.isAtOneLocation = isFlatBook(options);
    return publish;
}

/// One run, from its folder to its findings.
class Running {
public:
    explicit Running(const ScratchRun& run)
        : run_(run),
          publish_(scratchOptions(run.options, scratch_.path())),
          paths_(resolvePublishPaths(publish_)) {}

    void withFindings(RunDisplay& display, RunTotal& total) const;
    void withoutFindings(RunDisplay& display, RunTotal& total) const;

private:
    RunSetting setting() const {
        return {buildRequest(publish_, paths_, run_.profiles.file()),
                run_.options.catalogs,
                nullptr,
                run_.watch,
                run_.watch,
                run_.onCatalog,
                run_.clock,
                run_.endsBeforeOutput};
    }

    const ScratchRun& run_;
    ScratchFolder scratch_;
    PublishOptions publish_;
    PublishPaths paths_;
};

void noteOutcome(const RunOutcome& outcome, RunTotal& total) {
    total.status = outcome.status;
    if (findStatusFault(outcome) || outcome.hasUnwrittenDocument) {
        total.code = ExitCode::kRunFailed;
    }
}

void Running::withFindings(RunDisplay& display, RunTotal& total) const {
    const RunOptions& options = run_.options;
    FindingContext context{fs::current_path().string(), run_.profiles.names(),
                           shownCatalogs(options.catalogs), options.allowsMissingFilter,
                           findListedCatalogFault(options.catalogs)};
    FindingCollector collector(std::move(context), options.diagnostics.severities);
    ComponentPlaces components({paths_.output,
                                options.output.empty() ? fs::path() : run_.paths.output,
                                options.isAtOneLocation, /*isOnlyLookedAt=*/true});
    RunSetting observed = setting();
    observed.collector = &collector;
    observed.watch = [&](const Observation& observation) {
        components.observe(observation);
        if (run_.watch) {
            run_.watch(observation);
        }
    };
    const RunOutcome outcome = runRequest(observed, display);
    collector.finish();
    components.addFindings(collector);
    for (std::string& path : components.paths()) {
        total.places.insert(std::move(path));
    }
    run_.profiles.addFindings(collector);
    addFailure(outcome, run_.paths.map.string(), run_.paths.map.string(), collector);

    OutsideFragments fragments(collector.context().currentFolder, options.diagnostics.severities);
    total.list.addDropped(collector.list());
    for (Finding& finding : collector.list().take()) {
        total.list.add(fragments.lookedAt(std::move(finding)));
    }
    total.droppedFaults += collector.facts().droppedFaults();
    total.topics = std::max(total.topics, collector.facts().topicCount());
    noteOutcome(outcome, total);
}

void Running::withoutFindings(RunDisplay& display, RunTotal& total) const {
    noteOutcome(runRequest(setting(), display), total);
}

}  // namespace

void runInScratch(const ScratchRun& run, RunDisplay& display, RunTotal& total) {
    const Running running(run);
    if (run.hasFindings) {
        running.withFindings(display, total);
    } else {
        running.withoutFindings(display, total);
    }
}

}  // namespace marrowpress
