#include "cli/html.h"

#include "findings/characters.h"

namespace marrowpress {
namespace {

/// What stands for `unit` in a text; empty where it stands for itself.
std::string_view entityOf(char unit) {
    switch (unit) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return {};
    }
}

bool needsEscapeInName(char unit) {
    constexpr std::string_view kSpecial = "\"#%&',<=>`";
    return static_cast<unsigned char>(unit) <= ' ' || unit == '\x7F' ||
           kSpecial.find(unit) != std::string_view::npos;
}

}  // namespace

std::string htmlText(std::string_view text) {
    return htmlOfShown(shownText(text));
}

std::string htmlOfShown(std::string_view shown) {
    std::string html;
    html.reserve(shown.size());
    for (const char unit : shown) {
        const std::string_view entity = entityOf(unit);
        if (entity.empty()) {
            html += unit;
        } else {
            html += entity;
        }
    }
    return html;
}

std::string htmlName(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string name;
    for (const char unit : shownText(text)) {
        if (needsEscapeInName(unit)) {
            const auto byte = static_cast<unsigned char>(unit);
            name += '%';
            name += kDigits[byte / kDigits.size()];
            name += kDigits[byte % kDigits.size()];
        } else {
            name += unit;
        }
    }
    return name;
}

}  // namespace marrowpress
