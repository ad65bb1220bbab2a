#include "cli/start_tag.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <system_error>
#include <utility>

namespace marrowpress {
namespace {

/// The entities that need no declaration.
constexpr std::array<std::pair<std::string_view, char>, 5> kEntities{
    {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};

/// Takes that many bytes, or all that are there.
std::string_view take(std::string_view& rest, std::size_t size) {
    const std::string_view taken = rest.substr(0, size);
    rest.remove_prefix(taken.size());
    return taken;
}

bool isBlank(char unit) {
    return unit == ' ' || unit == '\t' || unit == '\r' || unit == '\n';
}

void skipBlanks(std::string_view& rest) {
    while (!rest.empty() && isBlank(rest.front())) {
        rest.remove_prefix(1);
    }
}

std::string_view takeName(std::string_view& rest) {
    std::size_t size = 0;
    while (size < rest.size() && rest[size] != '=' && !isBlank(rest[size])) {
        ++size;
    }
    return take(rest, size);
}

/// Takes "name = 'value'"; empty when something else stands there.
std::optional<TagAttribute> takeAttribute(std::string_view& rest) {
    TagAttribute attribute;
    attribute.name = takeName(rest);
    skipBlanks(rest);
    if (attribute.name.empty() || !rest.starts_with('=')) {
        return std::nullopt;
    }
    rest.remove_prefix(1);
    skipBlanks(rest);
    if (!rest.starts_with('"') && !rest.starts_with('\'')) {
        return std::nullopt;
    }
    attribute.quote = rest.front();
    rest.remove_prefix(1);
    attribute.value = take(rest, rest.find(attribute.quote));
    if (rest.empty()) {
        return std::nullopt;
    }
    rest.remove_prefix(1);
    return attribute;
}

void appendUtf8(std::string& text, std::uint32_t point) {
    const auto append = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (point < 0x80) {
        append(point);
        return;
    }
    if (point < 0x800) {
        append(0xC0 | point >> 6);
    } else {
        if (point < 0x10000) {
            append(0xE0 | point >> 12);
        } else {
            append(0xF0 | point >> 18);
            append(0x80 | (point >> 12 & 0x3F));
        }
        append(0x80 | (point >> 6 & 0x3F));
    }
    append(0x80 | (point & 0x3F));
}

/// The character of "#10" or "#xA"; empty for anything else.
std::optional<std::uint32_t> characterOf(std::string_view name) {
    const bool isHexadecimal = name.starts_with("#x");
    name.remove_prefix(isHexadecimal ? 2 : 1);
    std::uint32_t point = 0;
    const char* const end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data(), end, point, isHexadecimal ? 16 : 10);
    const bool isCharacter = error == std::errc() && stop == end && point > 0 &&
                             point <= 0x10FFFF && point >> 11 != 0x1B;
    return isCharacter ? std::optional(point) : std::nullopt;
}

/// Appends what stands for "&name;"; false when that is not known.
bool appendReference(std::string& text, std::string_view name) {
    if (name.starts_with('#')) {
        const std::optional<std::uint32_t> point = characterOf(name);
        if (point) {
            appendUtf8(text, *point);
        }
        return point.has_value();
    }
    const auto found = std::find_if(kEntities.begin(), kEntities.end(),
                                    [name](const auto& entity) { return entity.first == name; });
    if (found == kEntities.end()) {
        return false;
    }
    text += found->second;
    return true;
}

}  // namespace

std::optional<StartTag> parseStartTag(std::string_view bytes) {
    if (!bytes.starts_with('<') || !bytes.ends_with('>')) {
        return std::nullopt;
    }
    bytes.remove_prefix(1);
    bytes.remove_suffix(bytes.ends_with("/>") ? 2 : 1);
    StartTag tag;
    tag.name = takeName(bytes);
    for (skipBlanks(bytes); !bytes.empty(); skipBlanks(bytes)) {
        const std::optional<TagAttribute> attribute = takeAttribute(bytes);
        if (!attribute) {
            return std::nullopt;
        }
        tag.attributes.push_back(*attribute);
    }
    return tag;
}

std::optional<std::string> textOfValue(std::string_view value) {
    std::string text;
    text.reserve(value.size());
    for (std::size_t at = 0; at < value.size(); ++at) {
        const char unit = value[at];
        if (unit == '&') {
            const std::size_t end = value.find(';', at);
            if (end == std::string_view::npos ||
                !appendReference(text, value.substr(at + 1, end - at - 1))) {
                return std::nullopt;
            }
            at = end;
        } else if (unit == '\t' || unit == '\n' || unit == '\r') {
            text += ' ';
            at += value.substr(at).starts_with("\r\n") ? 1 : 0;
        } else {
            text += unit;
        }
    }
    return text;
}

std::string valueOfText(std::string_view text, char quote) {
    std::string value;
    value.reserve(text.size());
    for (const char unit : text) {
        switch (unit) {
            case '&':
                value += "&amp;";
                break;
            case '<':
                value += "&lt;";
                break;
            case '\t':
                value += "&#x9;";
                break;
            case '\n':
                value += "&#xA;";
                break;
            case '\r':
                value += "&#xD;";
                break;
            default:
                if (unit == quote) {
                    value += quote == '"' ? "&quot;" : "&apos;";
                } else {
                    value += unit;
                }
        }
    }
    return value;
}

std::string attributeText(const StartTag& tag, std::string_view name) {
    const auto found =
        std::find_if(tag.attributes.begin(), tag.attributes.end(),
                     [name](const TagAttribute& attribute) { return attribute.name == name; });
    return found == tag.attributes.end() ? std::string()
                                         : textOfValue(found->value).value_or(std::string());
}

}  // namespace marrowpress
