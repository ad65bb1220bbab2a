#include "findings/json_writer.h"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <ostream>

#include "findings/finding_lines.h"
#include "findings/severity.h"
#include "host/utf8.h"

namespace marrowpress {
namespace {

boost::json::value text(std::string_view raw) {
    return boost::json::string(toValidUtf8(raw));
}

boost::json::value textOrNull(std::string_view raw) {
    return raw.empty() ? boost::json::value() : text(raw);
}

boost::json::value numberOrNull(std::uint32_t number) {
    return number == 0 ? boost::json::value() : boost::json::value(number);
}

boost::json::object placeObject(const FindingPlace& place) {
    return {{"file", textOrNull(place.file)},
            {"line", numberOrNull(place.line)},
            {"column", numberOrNull(place.column)}};
}

boost::json::object stepObject(const FindingStep& step) {
    boost::json::object object = placeObject(step.place);
    object["what"] = text(step.what);
    return object;
}

template <typename Item, typename Convert>
boost::json::array arrayOf(const std::vector<Item>& items, Convert convert) {
    boost::json::array array;
    array.reserve(items.size());
    for (const Item& item : items) {
        array.push_back(convert(item));
    }
    return array;
}

boost::json::object findingObject(const Finding& finding) {
    const FindingPlace& place = finding.place;
    return {{"id", text(finding.id)},
            {"severity", severityName(finding.severity)},
            {"text", text(finding.text)},
            {"file", textOrNull(place.file)},
            {"line", numberOrNull(place.line)},
            {"column", numberOrNull(place.column)},
            {"element", textOrNull(finding.element)},
            {"target", textOrNull(finding.target)},
            {"hint", textOrNull(finding.hint)},
            {"via", arrayOf(finding.via, stepObject)},
            {"places", arrayOf(finding.places, placeObject)},
            {"profile", arrayOf(finding.profiles, text)},
            {"artefact", finding.isArtefact},
            {"hostText", finding.hostText ? text(*finding.hostText) : boost::json::value()}};
}

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

void writeJson(std::ostream& out, const std::vector<Finding>& findings,
               const FindingSummary& summary) {
    for (const Finding& finding : findings) {
        out << boost::json::serialize(findingObject(finding)) << '\n';
    }
    out << summaryLine(summary) << '\n';
}

}  // namespace marrowpress
