#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace marrowpress {

/// Puts `text` into the file at `path`, which is as it was or whole: it is written beside and
/// renamed. A pipe or a device is written to. Gives the system's reason when that fails.
std::optional<std::string> replaceFile(const std::filesystem::path& path, std::string_view text);

}  // namespace marrowpress
