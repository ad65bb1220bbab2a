#pragma once

#include <string>
#include <vector>

#include "cli/page_files.h"
#include "findings/finding.h"

namespace marrowpress {

/// The part of the page that shows findings, those of one id together, with their source lines.
/// Errors come first.
std::string findingsPart(const std::vector<Finding>& findings, const PageFiles& files);

}  // namespace marrowpress
