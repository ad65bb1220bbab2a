#include "cli/publication_report.h"

#include <utility>

#include "cli/neighbourhood.h"
#include "cli/page_files.h"
#include "cli/report_page.h"

namespace marrowpress {

PublicationReport::PublicationReport(ReportSetting setting)
    : setting_(std::move(setting)),
      dependencies_(setting_.map),
      outline_(setting_.map, setting_.isForPrint, exclusions_) {}

void PublicationReport::observe(const Observation& observation) {
    keys_.observe(observation);
    dependencies_.observe(observation);
    exclusions_.observe(observation);
    outline_.observe(observation);
    if (observation.kind == ObservationKind::kDocumentRead) {
        documents_.insert(observation.target);
    }
}

void PublicationReport::write(std::ostream& out, const std::vector<Finding>& findings,
                              const FindingSummary& summary) {
    keys_.finish();
    dependencies_.finish();
    exclusions_.finish();
    outline_.finish();
    const Neighbourhood neighbourhood(dependencies_, keys_);
    const PageFiles files(neighbourhood, exclusions_, documents_, setting_.currentFolder);
    const std::string map = setting_.map.string();
    out << reportPage({setting_.isCheck, map, setting_.output, setting_.profiles, findings, summary,
                       outline_, exclusions_, keys_, files});
}

std::function<void(const Observation&)> watchingFor(PublicationReport* report) {
    if (!report) {
        return {};
    }
    return [report](const Observation& observation) { report->observe(observation); };
}

FindingsWriting writingOf(PublicationReport* report) {
    if (!report) {
        return {};
    }
    return [report](std::ostream& out, const std::vector<Finding>& findings,
                    const FindingSummary& summary) { report->write(out, findings, summary); };
}

std::vector<std::string> pathTexts(const std::vector<std::filesystem::path>& paths) {
    std::vector<std::string> names;
    names.reserve(paths.size());
    for (const std::filesystem::path& path : paths) {
        names.push_back(path.string());
    }
    return names;
}

}  // namespace marrowpress
