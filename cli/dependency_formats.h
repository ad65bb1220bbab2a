#pragma once

#include <string>
#include <vector>

#include "cli/dependency_list.h"

/// Files and references as texts, a line each.
namespace marrowpress {

/// As `deps` shows them: "map reference", "read".
const char* kindName(DependencyKind kind);
const char* stateName(DependencyState state);

/// Paths are shown as seen from `currentFolder`.
std::string dependencyTable(const std::vector<const Dependency*>& files,
                            const std::string& currentFolder);
std::string edgeTable(const std::vector<const DependencyEdge*>& edges,
                      const std::string& currentFolder);

/// An object a line. Paths are absolute.
std::string dependencyJson(const std::vector<const Dependency*>& files);
std::string edgeJson(const std::vector<const DependencyEdge*>& edges);

}  // namespace marrowpress
