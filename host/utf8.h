#pragma once

#include <string>
#include <string_view>

namespace marrowpress {

/// True when every byte of `text` belongs to a well-formed UTF-8 sequence.
///
/// Overlong forms, encoded surrogates and values past U+10FFFF are not UTF-8.
bool isValidUtf8(std::string_view text);

/// `text` with each byte that is no part of a well-formed sequence replaced by
/// U+FFFD, one for one byte.
std::string toValidUtf8(std::string_view text);

}  // namespace marrowpress
