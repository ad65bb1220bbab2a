#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/help_formatter.h"
#include "cli/options.h"

namespace marrowpress {

/// Reads the arguments behind the program's name. No file is looked at. A help text has lines of
/// `helpWidth` columns at most, but for examples.
Options parseOptions(const std::vector<std::string>& arguments,
                     std::size_t helpWidth = kUsualHelpWidth);

}  // namespace marrowpress
