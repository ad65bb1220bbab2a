#pragma once

#include <string_view>
#include <vector>

#include "findings/finding.h"

/// What each format is shown to write.
namespace marrowpress {

/// The current folder of these findings. It isn't there, and so no source line is.
inline constexpr std::string_view kSampleFolder = "/guide";

/// Findings of all kinds, with names and texts that some format or other has to escape.
std::vector<Finding> sampleFindings();

/// What a run with them came to.
FindingSummary sampleSummary();

}  // namespace marrowpress
