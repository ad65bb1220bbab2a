#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "findings/finding.h"

namespace marrowpress {

/// A start tag of a map, as it stands in the file.
struct MapElement {
    FindingPlace place;
    std::string tagName;
    std::size_t depth;  ///< 0 for the root.
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;  ///< Of a `navtitle`: what stands behind its tag, up to the next one.

    /// Empty when there is none of that name.
    std::string_view attribute(std::string_view name) const;
};

/// The elements of the map at an absolute path, in their order. The file is read as it stands, in
/// UTF-8 or in an encoding that has its tags in common with it, and without its DTD. Empty when it
/// cannot be read, or is large.
std::vector<MapElement> readMapElements(const std::string& path);

}  // namespace marrowpress
