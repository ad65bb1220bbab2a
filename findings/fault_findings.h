#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "findings/file_hints.h"
#include "findings/finding.h"
#include "findings/run_facts.h"
#include "marrowpress/observer.h"

namespace marrowpress {

/// What is known besides a run itself.
struct FindingContext {
    std::string currentFolder;          ///< Absolute; texts show paths as seen from it.
    std::vector<std::string> profiles;  ///< The DITAVAL files of the run, absolute.
    std::vector<std::string> catalogs;  ///< Those that were asked, as they are to be shown.
    bool isFilterOptional = false;      ///< A profile that can't be read is done without.
    /// What is wrong with the first of the catalogs that can't be used; empty when all can.
    std::string catalogFault = {};
};

/// Makes findings of the faults of a run.
class FaultFindings {
public:
    /// Both must outlive this object.
    FaultFindings(const RunFacts& facts, const FindingContext& context)
        : facts_(facts), context_(context) {}

    /// The finding of a fault, with its usual severity. Empty for one that isn't worth one: a file
    /// without a DTD that is none of DITA's documents.
    std::optional<Finding> findingOf(const Observation& fault);

private:
    void describe(Finding& finding, const Observation& fault);
    void describeKey(Finding& finding);
    void describeElement(Finding& finding, const Observation& fault);
    void describeUnread(Finding& finding, const Observation& fault);
    void describeUnwritten(Finding& finding, const Observation& fault);
    void describeMissing(Finding& finding);
    void describeLostDtd(Finding& finding, const Observation& fault) const;
    void describeBrokenDtd(Finding& finding, const Observation& fault) const;
    void describeFragment(Finding& finding, const Observation& fault) const;
    bool isMapFile(const std::string& path) const;
    void describeLoop(Finding& finding, const Observation& fault) const;
    void describeNoTopic(Finding& finding) const;
    void describeOutside(Finding& finding) const;
    void describeCut(Finding& finding, const Observation& fault) const;

    /// Whether the file is one of the run's DITAVAL files.
    bool isProfile(std::string_view path) const;
    std::string shown(const std::string& path) const;
    std::string shown(const FindingPlace& place) const;
    std::string shownProfiles() const;

    const RunFacts& facts_;
    const FindingContext& context_;
    FileHints fileHints_;
};

/// "MP105"
std::string findingId(std::uint32_t code);

/// The id of the finding that says why `document` was read without its DTD.
std::string lostDtdId(const DocumentFact& document);

}  // namespace marrowpress
