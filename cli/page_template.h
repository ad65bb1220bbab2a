#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace marrowpress {

/// `pattern` with each "{{name}}" replaced by the text of that name. No text is looked into, and a
/// name without a text stays.
std::string filledTemplate(std::string_view pattern,
                           const std::vector<std::pair<std::string_view, std::string>>& texts);

}  // namespace marrowpress
