#include "cli/tag_references.h"

#include <algorithm>
#include <array>
#include <string>

namespace marrowpress {
namespace {

constexpr std::array<std::string_view, 4> kDirectReferences{"href", "conref", "conrefend", "xtrf"};

/// Elements whose "href" is shown or played where they stand. A class that says so comes from the
/// DTD, and is not in the document.
constexpr std::array<std::string_view, 10> kMediaElements{
    "image", "hazardsymbol", "glossSymbol",  "svgref",      "mathmlref",
    "audio", "video",        "media-source", "media-track", "video-poster"};

constexpr std::array<std::string_view, 37> kMediaExtensions{
    "ai",  "avi",  "avif", "bmp", "cgm",  "emf", "eps",  "flac", "flv", "gif", "ico", "jpe", "jpeg",
    "jpg", "m4a",  "m4v",  "mkv", "mov",  "mp3", "mp4",  "mpeg", "mpg", "oga", "ogg", "ogv", "png",
    "svg", "svgz", "swf",  "tif", "tiff", "wav", "webm", "webp", "wma", "wmf", "wmv"};

template <std::size_t Size>
bool holds(const std::array<std::string_view, Size>& texts, std::string_view text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

bool isMediaElement(const StartTag& tag) {
    return holds(kMediaElements, tag.name) ||
           attributeText(tag, "class").find(" topic/image ") != std::string::npos;
}

/// Whether the value of this param is a reference, whatever it is.
bool isReferenceParam(const StartTag& tag) {
    const std::string name = attributeText(tag, "name");
    return name == "src" || name == "poster" || attributeText(tag, "valuetype") == "ref";
}

}  // namespace

std::vector<TagReference> referencesOf(const StartTag& tag) {
    std::vector<TagReference> references;
    for (const TagAttribute& attribute : tag.attributes) {
        if (holds(kDirectReferences, attribute.name)) {
            const bool isShown = attribute.name == "href" && isMediaElement(tag);
            references.push_back({&attribute, isShown ? ReferenceUse::kMedia : ReferenceUse::kLink,
                                  attributeText(tag, "scope") != "external"});
        } else if (attribute.name == "data") {
            references.push_back({&attribute, ReferenceUse::kMedia, tag.name == "object"});
        } else if (attribute.name == "value" && tag.name == "param") {
            references.push_back({&attribute, ReferenceUse::kMedia, isReferenceParam(tag)});
        }
    }
    return references;
}

bool hasMediaExtension(std::string_view path) {
    const std::size_t dot = path.find_last_of("./");
    if (dot == std::string_view::npos || path[dot] == '/') {
        return false;
    }
    std::string extension(path.substr(dot + 1));
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char unit) {
        return unit >= 'A' && unit <= 'Z' ? static_cast<char>(unit - 'A' + 'a') : unit;
    });
    return holds(kMediaExtensions, extension);
}

}  // namespace marrowpress
