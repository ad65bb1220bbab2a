#include "cli/map_source.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include "cli/start_tag.h"
#include "cli/xml_pieces.h"
#include "findings/regular_file.h"
#include "findings/text_position.h"

namespace marrowpress {
namespace {

constexpr std::size_t kLargestFile = 16'000'000;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The text of the file, without a byte order mark; empty when there is none that can be cut.
std::string textOf(const std::string& path) {
    std::error_code error;
    if (std::filesystem::file_size(path, error) > kLargestFile || error) {
        return {};
    }
    RegularFile file(path);
    std::string text = file.isOpen() ? file.read().value_or(std::string()) : std::string();
    if (text.find('\0') != std::string::npos) {
        return {};
    }
    return text.starts_with(kByteOrderMark) ? text.substr(kByteOrderMark.size()) : text;
}

XmlPieces::Source sourceOf(std::string_view text) {
    return [text](char* into, std::size_t most) mutable {
        const std::size_t size = text.copy(into, most);
        text.remove_prefix(size);
        return size;
    };
}

MapElement elementOf(const StartTag& tag, const TextPosition& position, std::size_t depth) {
    MapElement element{{{}, position.line, position.column}, std::string(tag.name), depth, {}, {}};
    for (const TagAttribute& attribute : tag.attributes) {
        element.attributes.emplace_back(attribute.name,
                                        textOfValue(attribute.value).value_or(std::string()));
    }
    return element;
}

/// Whether the text behind the start tag of the last element is wanted.
bool isTextWanted(const std::vector<MapElement>& elements, std::size_t depth) {
    return !elements.empty() && elements.back().tagName == "navtitle" &&
           elements.back().depth + 1 == depth;
}

}  // namespace

std::string_view MapElement::attribute(std::string_view name) const {
    const auto found =
        std::find_if(attributes.begin(), attributes.end(),
                     [name](const auto& attribute) { return attribute.first == name; });
    return found == attributes.end() ? std::string_view() : found->second;
}

std::vector<MapElement> readMapElements(const std::string& path) {
    const std::string text = textOf(path);
    TextPositions positions(text);
    XmlPieces pieces(sourceOf(text));
    std::vector<MapElement> elements;
    std::size_t offset = 0;
    std::size_t depth = 0;
    while (const std::optional<XmlPiece> piece = pieces.next()) {
        const std::optional<StartTag> tag =
            piece->isStartTag ? parseStartTag(piece->bytes) : std::nullopt;
        if (tag) {
            elements.push_back(elementOf(*tag, positions.at(offset), depth));
            elements.back().place.file = path;
            depth += piece->bytes.ends_with("/>") ? 0 : 1;
        } else if (piece->isEndTag) {
            depth -= std::min<std::size_t>(depth, 1);
        } else if (isTextWanted(elements, depth)) {
            elements.back().text += textOfValue(piece->bytes).value_or(std::string());
        }
        offset += piece->bytes.size();
    }
    return elements;
}

}  // namespace marrowpress
