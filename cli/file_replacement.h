#pragma once

#include <filesystem>
#include <string_view>

namespace marrowpress {

/// Puts `text` into the file at `path`, which is as it was or whole: it is written beside and
/// renamed. A pipe or a device is written to.
///
/// @throws FileFailure that names `path`.
void replaceFile(const std::filesystem::path& path, std::string_view text);

}  // namespace marrowpress
