#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "findings/profile.h"

namespace marrowpress {

/// Something about a profile that its writer may not know. How it is worded is not known here.
struct ProfileRemark {
    enum class Kind : std::uint8_t {
        kUnknownElement,    ///< DITA has no such element in a profile.
        kUnknownAttribute,  ///< `name`: the attribute; `value`: its value.
        kUnknownAction,     ///< `value`: the action, empty when there is none.
        kRootIsNotVal,      ///< `element`: what it is.
        kUnmatchedRule,     ///< `name`: the attribute; `value`: its value, empty for all.
        kNoEffect,          ///< `name`: "flag", "passthrough", or the name of an element.
    };

    Kind kind = Kind::kUnknownElement;
    FindingPlace place;   ///< For several, that of the first.
    std::string element;  ///< Tag name.
    std::string name;
    std::string value;
    std::size_t count = 1;  ///< How often; more than 1 for `kNoEffect` only.

    friend bool operator==(const ProfileRemark&, const ProfileRemark&) = default;
};

/// Whether the root is that of a DITAVAL file.
bool isProfile(const Profile& profile);

/// What can be said of a profile by itself, in document order, and behind it what has no effect,
/// once for each kind. Of a file with another root than `val` nothing else is said.
std::vector<ProfileRemark> remarksOn(const Profile& profile);

/// Pairs of an attribute and one of the values in it.
using ConditionValues = std::set<std::pair<std::string, std::string>>;

/// The rules that count and that fit none of the pairs that a run has met, each once.
///
/// What counts is what the module takes: not an include or exclude that repeats the default, nor
/// one that the rule for its whole attribute makes idle, nor a second rule for the same pair.
std::vector<ProfileRemark> unmatchedRules(const std::vector<ProfileRule>& rules,
                                          const ConditionValues& met);

}  // namespace marrowpress
