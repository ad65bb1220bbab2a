#pragma once

#include <string>
#include <string_view>

#include "findings/finding.h"

/// What makes a finding at a place the same one in another run: its id, the file, the element and
/// what it is about. Lines, columns, severities and texts may differ. Paths count as seen from a
/// folder, so that a copy of the sources elsewhere has the same findings.
namespace marrowpress {

/// The same text for what is the same; for comparison only.
std::string identityOf(const Finding& finding, const FindingPlace& place, std::string_view folder);

/// A short text for the finding at its own place, the same on every machine.
std::string fingerprintOf(const Finding& finding, std::string_view folder);

}  // namespace marrowpress
