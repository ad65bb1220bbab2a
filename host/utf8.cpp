#include "host/utf8.h"

#include <cstddef>

namespace marrowpress {
namespace {

unsigned char byteAt(std::string_view text, std::size_t index) {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0;
}

bool isBetween(unsigned char byte, unsigned char first, unsigned char last) {
    return byte >= first && byte <= last;
}

/// Bytes of the well-formed sequence that starts at `index`, 0 when there is none.
std::size_t sequenceLength(std::string_view text, std::size_t index) {
    const unsigned char lead = byteAt(text, index);
    if (lead < 0x80) {
        return 1;
    }
    if (!isBetween(lead, 0xC2, 0xF4)) {
        return 0;
    }

    // The second byte's range is what rules out overlong forms, surrogates and values past the
    // last code point.
    const unsigned char first = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char last = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (!isBetween(byteAt(text, index + 1), first, last)) {
        return 0;
    }
    if (lead < 0xE0) {
        return 2;
    }
    if (!isBetween(byteAt(text, index + 2), 0x80, 0xBF)) {
        return 0;
    }
    if (lead < 0xF0) {
        return 3;
    }
    return isBetween(byteAt(text, index + 3), 0x80, 0xBF) ? 4 : 0;
}

}  // namespace

bool isValidUtf8(std::string_view text) {
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t length = sequenceLength(text, index);
        if (length == 0) {
            return false;
        }
        index += length;
    }
    return true;
}

std::string toValidUtf8(std::string_view text) {
    std::string valid;
    valid.reserve(text.size());
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t length = sequenceLength(text, index);
        if (length == 0) {
            valid += "\xEF\xBF\xBD";
            ++index;
            continue;
        }
        valid += text.substr(index, length);
        index += length;
    }
    return valid;
}

}  // namespace marrowpress
