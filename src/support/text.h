#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Text between its two encodings, and its one tokeniser.
///
/// Everything that touches the DOM, every path and every name is UTF-16; what
/// crosses to or from the host is UTF-8. Equality is exact, by code unit, all
/// over the system: there is no trimming, no case folding and no locale here.
namespace marrowpress {

/// Converts UTF-8 to UTF-16. The text ends at its first NUL.
///
/// A text that isn't well-formed is replaced as a whole by "???". Characters below U+0020
/// are carried over one by one, outside of any conversion. The test for well-formedness
/// lets overlong three- and four-byte forms and encoded surrogates pass; the converter then
/// puts U+FFFD in their place.
std::u16string toUtf16(std::string_view text);

/// As above; nothing for a null pointer.
std::optional<std::u16string> toUtf16(const char* text);

/// Converts UTF-16 to UTF-8. The text ends at its first NUL. A surrogate without its partner
/// becomes U+FFFD.
std::string toUtf8(std::u16string_view text);

/// As above; nothing for a null pointer.
std::optional<std::string> toUtf8(const char16_t* text);

/// Cuts `text` at each U+0020, and at no other character: leading, trailing and repeated
/// blanks give no tokens, and a tab is part of a token.
///
/// The views point into `text`, which must outlive them.
std::vector<std::u16string_view> splitTokens(std::u16string_view text);

/// Hashes texts for maps that are also asked with views.
struct U16Hash {
    using is_transparent = void;
    std::size_t operator()(std::u16string_view text) const noexcept {
        return std::hash<std::u16string_view>{}(text);
    }
};

}  // namespace marrowpress
