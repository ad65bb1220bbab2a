#include "support/text.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>

namespace marrowpress {
namespace {

constexpr std::u16string_view kMalformedText = u"???";

struct CloseConverter {
    void operator()(UConverter* converter) const noexcept { ucnv_close(converter); }
};

using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter openUtf8Converter() {
    UErrorCode error = U_ZERO_ERROR;
    Converter opened(ucnv_open("UTF-8", &error));
    if (error == U_MEMORY_ALLOCATION_ERROR) {
        throw std::bad_alloc();
    }
    if (U_FAILURE(error)) {
        return nullptr;
    }
    ucnv_setFallback(opened.get(), true);
    return opened;
}

/// The UTF-8 converter, kept open: opening one costs more than most conversions. Null where none
/// can be opened, which is tried again at the next call.
UConverter* utf8Converter() {
    static Converter converter;
    if (!converter) {
        converter = openUtf8Converter();
    }
    return converter.get();
}

std::size_t continuationCount(unsigned char lead) {
    if (lead < 0xE0) {
        return 1;
    }
    return lead < 0xF0 ? 2 : 3;
}

/// Looks at lead bytes and the number and range of what follows them, nothing more.
bool isWellFormed(std::string_view text) {
    for (std::size_t position = 0; position < text.size();) {
        const auto lead = static_cast<unsigned char>(text[position++]);
        if (lead < 0x80) {
            continue;
        }
        if (lead < 0xC2 || lead > 0xF4) {
            return false;
        }
        for (std::size_t left = continuationCount(lead); left > 0; --left) {
            if (position == text.size()) {
                return false;
            }
            const auto next = static_cast<unsigned char>(text[position++]);
            if (next < 0x80 || next > 0xBF) {
                return false;
            }
        }
    }
    return true;
}

/// What one call of the converter gets at most: it counts in 32 bits, and a code unit may need
/// three bytes.
constexpr std::size_t kLongestPiece = std::size_t{1} << 20;

bool isInsideCharacter(char unit) {
    return (static_cast<unsigned char>(unit) & 0xC0) == 0x80;
}

bool isInsideCharacter(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

/// The length of the first piece of `run`; no character is cut.
template <class View>
std::size_t pieceLength(View run) {
    if (run.size() <= kLongestPiece) {
        return run.size();
    }
    std::size_t length = kLongestPiece;
    // No character has more than four units.
    while (length > kLongestPiece - 4 && isInsideCharacter(run[length])) {
        --length;
    }
    return length;
}

void convertPiece(std::string_view run, std::u16string& result) {
    const std::size_t before = result.size();
    result.resize(before + run.size());  // never more code units than bytes
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t length = ucnv_toUChars(utf8Converter(), result.data() + before,
                                              static_cast<std::int32_t>(run.size()), run.data(),
                                              static_cast<std::int32_t>(run.size()), &error);
    result.resize(before + (U_FAILURE(error) ? 0 : static_cast<std::size_t>(length)));
}

void convertPiece(std::u16string_view run, std::string& result) {
    const std::size_t before = result.size();
    const std::size_t room = run.size() * 3;  // the most that a code unit can need
    result.resize(before + room);
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t length =
        ucnv_fromUChars(utf8Converter(), result.data() + before, static_cast<std::int32_t>(room),
                        run.data(), static_cast<std::int32_t>(run.size()), &error);
    result.resize(before + (U_FAILURE(error) ? 0 : static_cast<std::size_t>(length)));
}

template <class Unit>
bool isControl(Unit unit) {
    return static_cast<std::make_unsigned_t<Unit>>(unit) < 0x20;
}

/// Gives the runs between control characters to the converter, and carries those over as they are.
template <class Result, class View>
Result convert(View text) {
    Result result;
    for (std::size_t position = 0; position < text.size();) {
        std::size_t end = position;
        while (end < text.size() && !isControl(text[end])) {
            ++end;
        }
        for (View run = text.substr(position, end - position); !run.empty();) {
            const std::size_t length = pieceLength(run);
            convertPiece(run.substr(0, length), result);
            run.remove_prefix(length);
        }
        if (end < text.size()) {
            result.push_back(static_cast<typename Result::value_type>(text[end++]));
        }
        position = end;
    }
    return result;
}

}  // namespace

std::u16string toUtf16(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    if (!isWellFormed(text)) {
        return std::u16string(kMalformedText);
    }
    return convert<std::u16string>(text);
}

std::optional<std::u16string> toUtf16(const char* text) {
    if (!text) {
        return std::nullopt;
    }
    return toUtf16(std::string_view(text));
}

std::string toUtf8(std::u16string_view text) {
    return convert<std::string>(text.substr(0, text.find(u'\0')));
}

std::optional<std::string> toUtf8(const char16_t* text) {
    if (!text) {
        return std::nullopt;
    }
    return toUtf8(std::u16string_view(text));
}

std::vector<std::u16string_view> splitTokens(std::u16string_view text) {
    std::vector<std::u16string_view> tokens;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t end = std::min(text.find(u' ', position), text.size());
        if (end > position) {
            tokens.push_back(text.substr(position, end - position));
        }
        position = end + 1;
    }
    return tokens;
}

}  // namespace marrowpress
