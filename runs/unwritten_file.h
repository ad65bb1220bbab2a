#pragma once

#include <string>

#include "findings/finding.h"

namespace marrowpress {

/// The finding of a file that could not be written.
///
/// @param path           Absolute.
/// @param reason         The system's, or empty.
/// @param currentFolder  Absolute; the text shows the path as seen from it.
Finding unwrittenFinding(const std::string& path, const std::string& reason,
                         const std::string& currentFolder);

/// As `unwrittenFinding`, of a file that could not be read.
Finding unreadableFinding(const std::string& path, const std::string& reason,
                          const std::string& currentFolder);

}  // namespace marrowpress
