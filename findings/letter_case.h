#pragma once

#include <string>

namespace marrowpress {

/// `text` without differences of letter case, of all scripts; for comparing only. A text that is
/// not UTF-8 stays as it is.
std::string foldedCase(const std::string& text);

}  // namespace marrowpress
