#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "cli/diagnostics_options.h"
#include "findings/finding.h"

namespace marrowpress {

/// Where findings go.
struct FindingsTarget {
    bool isTerminal = false;  ///< To standard error, which may be one.
    std::string job;          ///< Of a batch, to which they belong; may be empty.
};

/// Writes findings and what the run came to in the format that was chosen; nothing for `kNone`.
void writeFindings(std::ostream& out, const std::vector<Finding>& findings,
                   const FindingSummary& summary, const DiagnosticsOptions& options,
                   const FindingsTarget& target);

}  // namespace marrowpress
