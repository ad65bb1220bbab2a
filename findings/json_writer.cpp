#include "findings/json_writer.h"

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <ostream>

#include "findings/finding_lines.h"
#include "findings/json_values.h"
#include "findings/severity.h"

namespace marrowpress {
namespace {

/// By hand, because Boost writes 1.8 as 1.8E0.
std::string summaryLine(const FindingSummary& summary) {
    std::string line = R"({"summary":{"errors":)" + std::to_string(summary.errors);
    line += R"(,"warnings":)" + std::to_string(summary.warnings);
    line += R"(,"notes":)" + std::to_string(summary.notes);
    line += R"(,"topics":)" + std::to_string(summary.topics);
    line += R"(,"files":)" + std::to_string(summary.files);
    line += R"(,"seconds":)" + fixedText(summary.seconds, 3);
    line += R"(,"exit":)" + std::to_string(summary.exit);
    if (summary.dropped > 0) {
        line += R"(,"dropped":)" + std::to_string(summary.dropped);
    }
    return line + "}}";
}

}  // namespace

boost::json::object findingObject(const Finding& finding) {
    const FindingPlace& place = finding.place;
    return {{"id", jsonText(finding.id)},
            {"severity", severityName(finding.severity)},
            {"text", jsonText(finding.text)},
            {"file", jsonTextOrNull(place.file)},
            {"line", jsonNumberOrNull(place.line)},
            {"column", jsonNumberOrNull(place.column)},
            {"element", jsonTextOrNull(finding.element)},
            {"target", jsonTextOrNull(finding.target)},
            {"hint", jsonTextOrNull(finding.hint)},
            {"via", jsonArray(finding.via, jsonStep)},
            {"places", jsonArray(finding.places, jsonPlace)},
            {"profile", jsonArray(finding.profiles, jsonText)},
            {"artefact", finding.isArtefact},
            {"hostText", finding.hostText ? jsonText(*finding.hostText) : boost::json::value()}};
}

void writeJson(std::ostream& out, const std::vector<Finding>& findings,
               const FindingSummary& summary, const std::string& job) {
    const std::string jobMember =
        job.empty() ? "" : R"({"job":)" + boost::json::serialize(jsonText(job)) + ",";
    const auto writeLine = [&](const std::string& object) {
        if (jobMember.empty()) {
            out << object << '\n';
        } else {
            out << jobMember << std::string_view(object).substr(1) << '\n';
        }
    };
    for (const Finding& finding : findings) {
        writeLine(boost::json::serialize(findingObject(finding)));
    }
    writeLine(summaryLine(summary));
}

}  // namespace marrowpress
