#pragma once

#include <iosfwd>
#include <vector>

#include "findings/finding_lines.h"

namespace marrowpress {

/// Writes a line for each finding, `file:line:column: error: text [MP105]`, and the summary's.
/// Artefacts are written like all others, and marked: who doesn't want them takes them out before.
void writeShort(std::ostream& out, const std::vector<Finding>& findings,
                const FindingSummary& summary, const LineOptions& options);

}  // namespace marrowpress
