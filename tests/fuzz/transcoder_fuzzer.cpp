#include <cstring>

#include "host/utf8.h"
#include "support/text.h"
#include "tests/fuzz/fuzzing.h"

namespace {

using marrowpress::isValidUtf8;
using marrowpress::require;
using marrowpress::toUtf16;
using marrowpress::toUtf8;

bool isHighSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool isLowSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

/// `text` with U+FFFD in the place of each surrogate without its partner.
std::u16string withoutLoneSurrogates(std::u16string_view text) {
    std::u16string paired;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const char16_t unit = text[position];
        const bool isPair = isHighSurrogate(unit) && position + 1 < text.size() &&
                            isLowSurrogate(text[position + 1]);
        if (isPair) {
            paired += text.substr(position++, 2);
        } else {
            paired += isHighSurrogate(unit) || isLowSurrogate(unit) ? u'\uFFFD' : unit;
        }
    }
    return paired;
}

void checkUtf8(const std::string& text) {
    const std::string upToNul = text.substr(0, text.find('\0'));
    const std::u16string converted = toUtf16(std::string_view(text));
    require(converted == toUtf16(text.c_str()), "a view and a pointer mean the same", text);
    const std::string back = toUtf8(converted);
    require(isValidUtf8(back), "what is converted back is UTF-8", text);
    if (isValidUtf8(upToNul)) {
        require(back == upToNul, "UTF-8 comes back as it was", text);
    } else {
        require(back != upToNul, "what is no UTF-8 is not taken for it", text);
    }
    const std::string repaired = marrowpress::toValidUtf8(text);
    require(isValidUtf8(repaired), "repaired text is UTF-8", text);
    require((repaired == text) == isValidUtf8(text), "only what is broken is repaired", text);
}

void checkUtf16(const std::string& bytes) {
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
    const std::u16string upToNul = text.substr(0, text.find(u'\0'));
    const std::string converted = toUtf8(std::u16string_view(text));
    require(isValidUtf8(converted), "UTF-16 becomes UTF-8", converted);
    require(toUtf16(std::string_view(converted)) == withoutLoneSurrogates(upToNul),
            "UTF-16 comes back, but for lone surrogates", converted);
}

void checkTokens(const std::string& text) {
    const std::u16string whole = toUtf16(std::string_view(text));
    std::u16string joined;
    for (const std::u16string_view token : marrowpress::splitTokens(whole)) {
        require(!token.empty() && token.find(u' ') == std::u16string_view::npos,
                "a token has no blank", text);
        joined += token;
    }
    std::u16string expected = whole;
    std::erase(expected, u' ');
    require(joined == expected, "tokens are all but the blanks", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = marrowpress::inputText(data, size);
    checkUtf8(text);
    checkUtf16(text);
    checkTokens(text);
    return 0;
}
