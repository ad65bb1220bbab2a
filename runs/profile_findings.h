#pragma once

#include <vector>

#include "findings/collector.h"
#include "findings/profile.h"

namespace marrowpress {

/// Adds what is to be said of the DITAVAL files of a run that is over: what DITA doesn't know, what
/// has no effect, and which of `rules`, those of all files together, match nothing that it met.
void addProfileFindings(const std::vector<Profile>& profiles, const std::vector<ProfileRule>& rules,
                        FindingCollector& collector);

}  // namespace marrowpress
