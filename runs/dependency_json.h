#pragma once

#include <boost/json/object.hpp>
#include <string>
#include <vector>

#include "runs/dependency_list.h"

/// Files and references as JSON. Paths are absolute.
namespace marrowpress {

// As people and tools read them: "map reference", "read".

const char* nameOf(DependencyKind kind);
const char* nameOf(DependencyState state);

/// {"file":..., "kind":..., "state":..., "from":...}
boost::json::object dependencyObject(const Dependency& file);

/// An object a line.
std::string dependencyJson(const std::vector<const Dependency*>& files);
std::string edgeJson(const std::vector<const DependencyEdge*>& edges);

}  // namespace marrowpress
