#pragma once

#include <optional>
#include <string_view>

#include "findings/finding.h"

namespace marrowpress {

/// "error", "warning" or "note": the names that formats and options have, in every language.
std::string_view severityName(Severity severity);

/// The severity of that name; empty for anything else.
std::optional<Severity> severityOf(std::string_view name);

}  // namespace marrowpress
