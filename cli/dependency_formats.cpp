#include "cli/dependency_formats.h"

#include "cli/text_table.h"
#include "findings/finding_lines.h"
#include "findings/shown_path.h"
#include "runs/dependency_json.h"

namespace marrowpress {
namespace {

std::string shownPlace(const FindingPlace& place, const std::string& currentFolder) {
    return place.file.empty() ? "" : placeText(place, currentFolder);
}

}  // namespace

std::string dependencyTable(const std::vector<const Dependency*>& files,
                            const std::string& currentFolder) {
    TextTable table({"FILE", "KIND", "STATE", "FROM"});
    for (const Dependency* const file : files) {
        table.add({shownPath(file->file, currentFolder), nameOf(file->kind), nameOf(file->state),
                   shownPlace(file->from, currentFolder)});
    }
    return table.text();
}

std::string edgeTable(const std::vector<const DependencyEdge*>& edges,
                      const std::string& currentFolder) {
    TextTable table({"FROM", "KIND", "TO"});
    for (const DependencyEdge* const edge : edges) {
        table.add({shownPlace(edge->place, currentFolder), nameOf(edge->kind),
                   shownPath(edge->to, currentFolder)});
    }
    return table.text();
}

}  // namespace marrowpress
