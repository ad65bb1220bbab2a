#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "findings/fault_findings.h"
#include "findings/fold.h"
#include "findings/run_facts.h"

namespace marrowpress {

/// Makes findings of all that a run tells its observer.
///
///     FindingCollector collector(context, severities);
///     options.onObservation = [&](const Observation& met) { collector.observe(met); };
///     ... the run ...
///     collector.finish();
class FindingCollector {
public:
    /// @param severities  By id, in the place of the usual ones.
    FindingCollector(FindingContext context, std::map<std::string, Severity> severities)
        : context_(std::move(context)),
          severities_(std::move(severities)),
          faults_(facts_, context_) {}
    FindingCollector(const FindingCollector&) = delete;
    FindingCollector& operator=(const FindingCollector&) = delete;

    void observe(const Observation& observation);

    /// Adds a finding that the caller has made.
    void add(Finding finding);

    /// Adds what could only be told when the run had ended. To be called once.
    void finish();

    const RunFacts& facts() const noexcept { return facts_; }
    const FindingContext& context() const noexcept { return context_; }
    /// To be read, or taken from, when all is in.
    FindingList& list() noexcept { return list_; }

private:
    using KindAndFile = std::pair<std::string, std::string>;
    struct NoEffectCount {
        Finding first;
        std::size_t count;
    };

    void addFault(const Observation& fault);
    void addNoEffect(const Observation& fault);
    bool belongsToOther(const Observation& fault);
    void addSameFiles();

    FindingContext context_;
    std::map<std::string, Severity> severities_;
    RunFacts facts_;
    FaultFindings faults_;
    FindingList list_;
    /// In the order in which they were met.
    std::vector<KindAndFile> noEffectOrder_;
    std::map<KindAndFile, NoEffectCount> noEffects_;
    /// Held back until all that belongs to them is in: by the path that could not be written.
    std::vector<std::string> unwrittenOrder_;
    std::map<std::string, Finding> unwritten_;
};

}  // namespace marrowpress
