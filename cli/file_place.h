#pragma once

#include <filesystem>

namespace marrowpress {

/// Where a file is, or would be made, when the one at `path` is opened for writing: absolute, with
/// all links followed, also one at its end that leads to nothing yet.
std::filesystem::path placeOf(const std::filesystem::path& path);

/// Whether both paths lead to one file, by whatever spelling or link, or would once it is there.
bool haveOnePlace(const std::filesystem::path& left, const std::filesystem::path& right);

}  // namespace marrowpress
