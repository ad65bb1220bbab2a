#include "cli/dependency_formats.h"

#include <boost/json/serialize.hpp>

#include "cli/text_table.h"
#include "findings/finding_lines.h"
#include "findings/json_values.h"
#include "findings/shown_path.h"

namespace marrowpress {
namespace {

std::string shownPlace(const FindingPlace& place, const std::string& currentFolder) {
    return place.file.empty() ? "" : placeText(place, currentFolder);
}

}  // namespace

const char* kindName(DependencyKind kind) {
    switch (kind) {
        case DependencyKind::kMap:
            return "map reference";
        case DependencyKind::kTopic:
            return "topic";
        case DependencyKind::kKeyDefinition:
            return "keydef";
        case DependencyKind::kConref:
            return "conref";
        case DependencyKind::kLink:
            return "xref";
        case DependencyKind::kImage:
            return "image";
        case DependencyKind::kDtd:
            return "DTD";
        case DependencyKind::kCatalog:
            return "catalog";
        case DependencyKind::kProfile:
            break;
    }
    return "DITAVAL";
}

const char* stateName(DependencyState state) {
    switch (state) {
        case DependencyState::kRead:
            return "read";
        case DependencyState::kAbsent:
            return "absent";
        case DependencyState::kUnreadable:
            break;
    }
    return "unreadable";
}

std::string dependencyTable(const std::vector<const Dependency*>& files,
                            const std::string& currentFolder) {
    TextTable table({"FILE", "KIND", "STATE", "FROM"});
    for (const Dependency* const file : files) {
        table.add({shownPath(file->file, currentFolder), kindName(file->kind),
                   stateName(file->state), shownPlace(file->from, currentFolder)});
    }
    return table.text();
}

std::string edgeTable(const std::vector<const DependencyEdge*>& edges,
                      const std::string& currentFolder) {
    TextTable table({"FROM", "KIND", "TO"});
    for (const DependencyEdge* const edge : edges) {
        table.add({shownPlace(edge->place, currentFolder), kindName(edge->kind),
                   shownPath(edge->to, currentFolder)});
    }
    return table.text();
}

std::string dependencyJson(const std::vector<const Dependency*>& files) {
    std::string text;
    for (const Dependency* const file : files) {
        const boost::json::value from =
            file->from.file.empty() ? boost::json::value() : jsonPlace(file->from);
        const boost::json::object object{{"file", jsonText(file->file)},
                                         {"kind", kindName(file->kind)},
                                         {"state", stateName(file->state)},
                                         {"from", from}};
        text += boost::json::serialize(object) + "\n";
    }
    return text;
}

std::string edgeJson(const std::vector<const DependencyEdge*>& edges) {
    std::string text;
    for (const DependencyEdge* const edge : edges) {
        const boost::json::value from =
            edge->from.empty() ? boost::json::value() : jsonPlace(edge->place);
        const boost::json::object object{
            {"from", from}, {"kind", kindName(edge->kind)}, {"to", jsonText(edge->to)}};
        text += boost::json::serialize(object) + "\n";
    }
    return text;
}

}  // namespace marrowpress
