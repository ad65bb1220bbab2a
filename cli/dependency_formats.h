#pragma once

#include <string>
#include <vector>

#include "runs/dependency_list.h"

/// Files and references as tables for people, a line each.
namespace marrowpress {

/// Paths are shown as seen from `currentFolder`.
std::string dependencyTable(const std::vector<const Dependency*>& files,
                            const std::string& currentFolder);
std::string edgeTable(const std::vector<const DependencyEdge*>& edges,
                      const std::string& currentFolder);

}  // namespace marrowpress
