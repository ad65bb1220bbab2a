#include "support/text.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace marrowpress {
namespace {

constexpr std::u16string_view kMalformedText = u"???";

struct CloseConverter {
    void operator()(UConverter* converter) const noexcept { ucnv_close(converter); }
};

/// The UTF-8 converter, kept open: opening one costs more than most conversions.
UConverter* utf8Converter() {
    static const std::unique_ptr<UConverter, CloseConverter> converter = [] {
        UErrorCode error = U_ZERO_ERROR;
        std::unique_ptr<UConverter, CloseConverter> opened(ucnv_open("UTF-8", &error));
        if (U_FAILURE(error)) {
            opened.reset();
        } else {
            ucnv_setFallback(opened.get(), true);
        }
        return opened;
    }();
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

void convertRun(std::string_view run, std::u16string& result) {
    const std::size_t before = result.size();
    result.resize(before + run.size());  // never more code units than bytes
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t length = ucnv_toUChars(utf8Converter(), result.data() + before,
                                              static_cast<std::int32_t>(run.size()), run.data(),
                                              static_cast<std::int32_t>(run.size()), &error);
    result.resize(before + (U_FAILURE(error) ? 0 : static_cast<std::size_t>(length)));
}

void convertRun(std::u16string_view run, std::string& result) {
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
        if (end > position) {
            convertRun(text.substr(position, end - position), result);
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
