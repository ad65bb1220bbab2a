#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace marrowpress {

/// The names of the keys that a map and the maps that it refers to define, as far as their texts
/// tell: no DTD is read, and no profile. For suggestions to somebody who types a name.
///
/// Looks no longer than `patience`, and then gives what it has. A file that can't be read, or isn't
/// well-formed from some place on, gives what stands in front of that.
///
/// @param path  Absolute.
/// @returns Each name once, sorted.
std::vector<std::string> keyNamesOf(const std::string& path, std::chrono::milliseconds patience);

}  // namespace marrowpress
