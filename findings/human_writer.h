#pragma once

#include <cstddef>
#include <iosfwd>
#include <vector>

#include "findings/finding_lines.h"

namespace marrowpress {

struct HumanOptions : LineOptions {
    std::size_t width = 80;      ///< Columns that a source line may take up.
    bool showsProfiles = false;  ///< Whether a finding is followed by its DITAVAL files.
};

/// Writes each finding as a person reads it, and the summary:
///
///     b.dita:9:3: error: text [MP105]
///         <p keyref="x"/>
///         ^
///       hint: what to do
///       via a.dita:14:32: conref b.dita#t/p
///       c.dita:2:1
///       and 4 more
///
/// Artefacts are written like all others, and marked: who doesn't want them takes them out before.
void writeHuman(std::ostream& out, const std::vector<Finding>& findings,
                const FindingSummary& summary, const HumanOptions& options);

}  // namespace marrowpress
