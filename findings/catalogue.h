#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "findings/finding.h"

namespace marrowpress {

/// What the findings of one id mean, in the language that was chosen. UTF-8.
struct Explanation {
    std::string title;    ///< A few words, without a full stop.
    std::string meaning;  ///< Some sentences: what is wrong, and what comes of it.
    std::string example;  ///< What such a finding is given for; lines of XML, or commands.
    std::string remedy;   ///< Some sentences: what to do.
};

/// All ids, in their order: "MP105" to "MP111", "MP201" to "MP218", and of batches "MP301" and
/// "MP302".
const std::vector<std::string>& findingIds();

/// The severity that a finding of that id has unless told otherwise; MP201 and MP202 are
/// errors where a map is concerned, which whoever makes them knows. Empty for an unknown id.
std::optional<Severity> defaultSeverity(std::string_view id);

/// What that id is about, in a few words; empty for an unknown id.
std::string findingTitle(std::string_view id);

/// Empty for an unknown id.
std::optional<Explanation> explanationOf(std::string_view id);

}  // namespace marrowpress
