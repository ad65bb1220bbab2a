#include "findings/text_position.h"

namespace marrowpress {
namespace {

/// The code units in UTF-16 of the character that begins with `byte`; none for any further byte.
std::uint32_t unitsOf(char byte) {
    constexpr unsigned kContinuationMask = 0xC0;
    constexpr unsigned kContinuation = 0x80;
    constexpr unsigned kFirstOfFour = 0xF0;
    const unsigned value = static_cast<unsigned char>(byte);
    if ((value & kContinuationMask) == kContinuation) {
        return 0;
    }
    return value >= kFirstOfFour ? 2 : 1;
}

}  // namespace

TextPosition TextPositions::at(std::size_t offset) {
    for (; offset_ < offset && offset_ < text_.size(); ++offset_) {
        if (isLineEnd()) {
            ++position_.line;
            position_.column = 1;
        } else {
            position_.column += unitsOf(text_[offset_]);
        }
    }
    return position_;
}

bool TextPositions::isLineEnd() const {
    if (text_[offset_] == '\n') {
        return true;
    }
    return text_[offset_] == '\r' && !text_.substr(offset_ + 1).starts_with('\n');
}

}  // namespace marrowpress
