#include "runs/dependency_json.h"

#include <boost/json/serialize.hpp>

#include "findings/json_values.h"

namespace marrowpress {

const char* nameOf(DependencyKind kind) {
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

const char* nameOf(DependencyState state) {
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

boost::json::object dependencyObject(const Dependency& file) {
    const boost::json::value from =
        file.from.file.empty() ? boost::json::value() : jsonPlace(file.from);
    return {{"file", jsonText(file.file)},
            {"kind", nameOf(file.kind)},
            {"state", nameOf(file.state)},
            {"from", from}};
}

std::string dependencyJson(const std::vector<const Dependency*>& files) {
    std::string text;
    for (const Dependency* const file : files) {
        text += boost::json::serialize(dependencyObject(*file)) + "\n";
    }
    return text;
}

std::string edgeJson(const std::vector<const DependencyEdge*>& edges) {
    std::string text;
    for (const DependencyEdge* const edge : edges) {
        const boost::json::value from =
            edge->from.empty() ? boost::json::value() : jsonPlace(edge->place);
        const boost::json::object object{
            {"from", from}, {"kind", nameOf(edge->kind)}, {"to", jsonText(edge->to)}};
        text += boost::json::serialize(object) + "\n";
    }
    return text;
}

}  // namespace marrowpress
