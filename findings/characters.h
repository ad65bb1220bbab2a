#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Texts from outside, character by character, for a terminal.
namespace marrowpress {

/// A code point of a text that should be UTF-8, or a byte that belongs to none.
struct Character {
    std::string_view bytes;  ///< Where it stands in the text.
    std::int32_t codePoint;  ///< -1 for a byte that is no UTF-8.
};

/// The first one of `text`, which isn't empty. `text` must outlive the result's use.
Character firstCharacter(std::string_view text);

/// Its length in UTF-16 code units; 1 for a byte that is no UTF-8.
std::size_t utf16Length(const Character& character);

/// The character as a line for people shows it. What would end the line, move the cursor, turn the
/// direction or can't be seen becomes an escape, such as "\n", "\x1B", "\u202E"; so does a byte
/// that is no UTF-8.
std::string shownCharacter(const Character& character);

/// `text` with each of its characters as `shownCharacter` gives it: one line, and valid UTF-8.
std::string shownText(std::string_view text);

/// The columns of a terminal that a text of `shownText` takes up.
std::size_t cellsOf(std::string_view shown);

}  // namespace marrowpress
