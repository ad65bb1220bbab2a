#pragma once

#include <filesystem>

namespace marrowpress {

/// Whether the file at `path` is an output of an earlier run, told by its start: the composite's
/// doctype, and behind it the empty root that a failed run leaves, or the root with the topic that
/// every composite begins with. A component has its conditions in between. An empty file may be
/// one that could not be written, and holds nothing that could be lost. Any other file that cannot
/// be read is none.
bool isWrittenComposite(const std::filesystem::path& path);

}  // namespace marrowpress
