#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <unordered_set>
#include <vector>

#include "cli/exclusion_list.h"
#include "cli/findings_report.h"
#include "cli/map_outline.h"
#include "findings/finding.h"
#include "marrowpress/observer.h"
#include "runs/dependency_list.h"
#include "runs/key_list.h"

namespace marrowpress {

/// What `--report` is to show of a run.
struct ReportSetting {
    bool isCheck;  ///< Nothing is to be written.
    bool isForPrint;
    std::filesystem::path map;          ///< Absolute.
    std::string output;                 ///< Absolute; empty when there is none.
    std::vector<std::string> profiles;  ///< Paths.
    std::string currentFolder;          ///< Absolute.
};

/// Gathers what a run meets, and writes it as a page.
class PublicationReport {
public:
    explicit PublicationReport(ReportSetting setting);
    PublicationReport(const PublicationReport&) = delete;
    PublicationReport& operator=(const PublicationReport&) = delete;

    /// Takes references too.
    void observe(const Observation& observation);

    /// To be called once, when the run is over.
    void write(std::ostream& out, const std::vector<Finding>& findings,
               const FindingSummary& summary);

private:
    ReportSetting setting_;
    KeyList keys_;
    DependencyList dependencies_;
    ExclusionList exclusions_;
    MapOutline outline_;
    std::unordered_set<std::string> documents_;  ///< Those that the run has read.
};

/// Hands over what a run meets; empty for null. `report` must outlive it.
std::function<void(const Observation&)> watchingFor(PublicationReport* report);

/// Writes the page; empty for null. `report` must outlive it.
FindingsWriting writingOf(PublicationReport* report);

/// As texts.
std::vector<std::string> pathTexts(const std::vector<std::filesystem::path>& paths);

}  // namespace marrowpress
