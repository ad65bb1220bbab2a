#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Paths as seen from a folder. All lexical: nothing here asks the file system.
namespace marrowpress {

/// `path` as seen from the absolute `folder`, with ".." where it has to be. A path that isn't
/// absolute stays as it is, and so do all where the folder is empty.
std::string relativePath(std::string_view path, std::string_view folder);

/// `path` as seen from the absolute `folder`, when it is in that folder or below.
std::optional<std::string> pathInside(std::string_view path, std::string_view folder);

/// `path` relative to `currentFolder` where that is shorter. Its bytes are not escaped.
std::string shownPath(std::string_view path, std::string_view currentFolder);

}  // namespace marrowpress
