#pragma once

#include <string>

#include "cli/exclusion_list.h"
#include "cli/map_outline.h"
#include "cli/page_files.h"

namespace marrowpress {

/// The part of the page that shows the map as a tree, with what became of each reference.
std::string mapPart(const MapOutline& outline, const PageFiles& files);

/// The part of the page that lists what the profile leaves out, and by which attribute.
std::string exclusionsPart(const ExclusionList& exclusions, const PageFiles& files);

}  // namespace marrowpress
