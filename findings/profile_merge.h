#pragma once

#include <string>
#include <vector>

#include "findings/profile.h"

namespace marrowpress {

/// Several profiles as one.
struct MergedProfile {
    std::string text;                ///< A DITAVAL document in UTF-8, without a doctype.
    std::vector<ProfileRule> rules;  ///< Those in the text, each with the place that it came from.
};

/// The rules of the first profile, then of each later one those for pairs of attribute and value
/// about which no earlier profile has a rule. All other elements are kept.
MergedProfile mergeProfiles(const std::vector<Profile>& profiles);

}  // namespace marrowpress
