#include "findings/characters.h"

#include <utf8proc.h>

#include <array>
#include <cstdio>

namespace marrowpress {
namespace {

constexpr std::int32_t kZeroWidthNonJoiner = 0x200C;
constexpr std::int32_t kZeroWidthJoiner = 0x200D;

/// Joiners can't be seen either, but scripts and emoji need them.
bool mustBeEscaped(std::int32_t codePoint) {
    switch (utf8proc_category(codePoint)) {
        case UTF8PROC_CATEGORY_CC:
        case UTF8PROC_CATEGORY_ZL:
        case UTF8PROC_CATEGORY_ZP:
            return true;
        case UTF8PROC_CATEGORY_CF:
            return codePoint != kZeroWidthNonJoiner && codePoint != kZeroWidthJoiner;
        default:
            return false;
    }
}

/// A backslash, the letter, and the value as so many hexadecimal digits.
std::string escape(char letter, int digits, std::int32_t value) {
    std::array<char, 16> text;
    std::snprintf(text.data(), text.size(), "\\%c%0*X", letter, digits,
                  static_cast<unsigned>(value));
    return text.data();
}

std::string escaped(std::int32_t codePoint) {
    switch (codePoint) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            break;
    }
    if (codePoint < 0x80) {
        return escape('x', 2, codePoint);
    }
    return codePoint < 0x10000 ? escape('u', 4, codePoint) : escape('U', 8, codePoint);
}

}  // namespace

Character firstCharacter(std::string_view text) {
    std::int32_t codePoint = -1;
    const utf8proc_ssize_t length =
        utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                         static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
    return length > 0 ? Character{text.substr(0, static_cast<std::size_t>(length)), codePoint}
                      : Character{text.substr(0, 1), -1};
}

std::size_t utf16Length(const Character& character) {
    return character.codePoint >= 0x10000 ? 2 : 1;
}

std::string shownCharacter(const Character& character) {
    if (character.codePoint < 0) {
        return escape('x', 2, static_cast<unsigned char>(character.bytes.front()));
    }
    return mustBeEscaped(character.codePoint) ? escaped(character.codePoint)
                                              : std::string(character.bytes);
}

std::string shownText(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        shown += shownCharacter(character);
        text.remove_prefix(character.bytes.size());
    }
    return shown;
}

std::size_t cellsOf(std::string_view shown) {
    std::size_t cells = 0;
    while (!shown.empty()) {
        const Character character = firstCharacter(shown);
        cells += static_cast<std::size_t>(utf8proc_charwidth(character.codePoint));
        shown.remove_prefix(character.bytes.size());
    }
    return cells;
}

}  // namespace marrowpress
