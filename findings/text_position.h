#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace marrowpress {

struct TextPosition {
    std::uint32_t line = 1;    ///< From 1.
    std::uint32_t column = 1;  ///< From 1, in UTF-16 code units.

    friend bool operator==(const TextPosition&, const TextPosition&) = default;
};

/// Tells where bytes of a UTF-8 text stand, one after the other: each is looked for from the last
/// one on. Lines end at LF, at CR, or at both together.
class TextPositions {
public:
    /// `text` must stay as it is for as long as this object is asked.
    explicit TextPositions(std::string_view text) : text_(text) {}

    /// Past the end: where the text ends. Before the last one that was asked for: that one.
    TextPosition at(std::size_t offset);

private:
    bool isLineEnd() const;

    std::string_view text_;
    std::size_t offset_ = 0;
    TextPosition position_;
};

}  // namespace marrowpress
