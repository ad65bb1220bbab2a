#pragma once

#include <string>
#include <string_view>

namespace marrowpress {

/// What is expected in the place of `actual`: the text of tests/findings/expected/NAME. When
/// MARROWPRESS_UPDATE_GOLDEN is 1, that becomes `actual` first.
std::string goldenText(std::string_view name, const std::string& actual);

}  // namespace marrowpress
