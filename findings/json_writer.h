#pragma once

#include <iosfwd>
#include <vector>

#include "findings/finding.h"

namespace marrowpress {

/// Writes each finding as a JSON object, a line each, and the summary as the last one;
/// docs/schemas/findings.schema.json describes them. Always valid UTF-8. Artefacts are written
/// like all others, and marked: who doesn't want them takes them out before.
void writeJson(std::ostream& out, const std::vector<Finding>& findings,
               const FindingSummary& summary);

}  // namespace marrowpress
