#pragma once

#include <iosfwd>
#include <string_view>
#include <vector>

#include "findings/finding.h"

namespace marrowpress {

/// Writes a workflow command of GitHub for each finding, which becomes an annotation. Artefacts
/// are left out.
///
/// @param currentFolder  Absolute; files in it are named relative to it, as annotations want them.
void writeGithub(std::ostream& out, const std::vector<Finding>& findings,
                 std::string_view currentFolder);

}  // namespace marrowpress
