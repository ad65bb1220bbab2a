#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace marrowpress {

/// How many characters have to be put in, left out or replaced, or exchanged with the one beside
/// them, to make `left` of `right`. More than `limit` is told as `limit + 1`. Both are UTF-8.
std::size_t editDistance(std::string_view left, std::string_view right, std::size_t limit);

/// The one of `names` that whoever wrote `name` may have meant: one that differs in letter case
/// only, else the nearest that differs in about a third of the characters at most, and of several
/// the first. Empty when there is none; `name` itself is never the answer.
std::optional<std::string> nearestName(std::string_view name,
                                       const std::vector<std::string>& names);

}  // namespace marrowpress
