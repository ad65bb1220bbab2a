#pragma once

#include <cstdint>
#include <string>

#include "findings/finding.h"

namespace marrowpress {

/// What is at the path of a map, told by the start of the file.
struct MapFile {
    enum class Kind : std::uint8_t {
        kMap,            ///< A map, or something that may be one.
        kNoMap,          ///< Surely none: a topic, a profile, XML of another kind.
        kUnreadable,     ///< `reason`: the system's, or "not a regular file".
        kNotWellFormed,  ///< `reason`: the parser's; the place is where it stopped.
    };

    Kind kind = Kind::kMap;
    std::string rootName;  ///< Tag name; empty when it wasn't reached.
    FindingPlace place;    ///< The file as a whole, but for what is not well-formed.
    std::string reason;
};

/// Looks at the file at an absolute path, up to its root's start tag. Neither its DTD nor any other
/// file is read. A fault behind the root's start tag may or may not be seen.
MapFile inspectMapFile(const std::string& path);

}  // namespace marrowpress
