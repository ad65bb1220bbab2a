#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "findings/finding.h"

namespace marrowpress {

/// All ids, in their order: "MP105" to "MP111", "MP201" to "MP218".
const std::vector<std::string>& findingIds();

/// The severity that a finding of that id has unless told otherwise; MP201 and MP202 are
/// errors where a map is concerned, which whoever makes them knows. Empty for an unknown id.
std::optional<Severity> defaultSeverity(std::string_view id);

}  // namespace marrowpress
