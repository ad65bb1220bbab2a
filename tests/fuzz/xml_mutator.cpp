#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// libFuzzer's own changes, byte by byte. Null where a corpus is only replayed.
extern "C" [[gnu::weak]] std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size,
                                                      std::size_t maxSize);

namespace {

/// A part of a text.
struct Span {
    std::size_t begin;
    std::size_t end;

    std::string_view of(std::string_view text) const { return text.substr(begin, end - begin); }
};

constexpr std::array<std::string_view, 26> kAttributes{
    "href=\"a.dita\"",
    "href=\"b.dita#b\"",
    "href=\"sub/c.dita#c/p\"",
    "href=\"#a/p\"",
    "href=\"inner.ditamap\"",
    "href=\"root.ditamap#x\"",
    "conref=\"#a/p\"",
    "conref=\"b.dita#b/p\"",
    "conref=\"b.dita#b\"",
    "conrefend=\"#a/q\"",
    "conkeyref=\"k/p\"",
    "conkeyref=\"l\"",
    "keyref=\"k\"",
    "keyref=\"l/p\"",
    "datakeyref=\"k\"",
    "keys=\"k l\"",
    "id=\"p\"",
    "id=\"a\"",
    "format=\"ditamap\"",
    "scope=\"external\"",
    "processing-role=\"resource-only\"",
    "print=\"no\"",
    "audience=\"trade\"",
    "class=\"- topic/topic \"",
    "navtitle=\"a/../b\"",
    "conrefend=\"b.dita#b/r\"",
};

/// Elements, each from its start tag to its end tag, and instructions, as far as a glance tells.
std::vector<Span> elementsOf(std::string_view text) {
    std::vector<Span> elements;
    std::vector<std::size_t> open;
    for (std::size_t begin = text.find('<'); begin + 1 < text.size();
         begin = text.find('<', begin + 1)) {
        const std::size_t end = text.find('>', begin);
        if (end == std::string_view::npos) {
            break;
        }
        const char first = text[begin + 1];
        if (first == '?' ||
            (std::isalpha(static_cast<unsigned char>(first)) && text[end - 1] == '/')) {
            elements.push_back({begin, end + 1});
        } else if (std::isalpha(static_cast<unsigned char>(first))) {
            open.push_back(begin);
        } else if (first == '/' && !open.empty()) {
            elements.push_back({open.back(), end + 1});
            open.pop_back();
        }
    }
    return elements;
}

/// What stands between double quotes behind "=".
std::vector<Span> valuesOf(std::string_view text) {
    constexpr std::string_view kBegin = "=\"";
    std::vector<Span> values;
    for (std::size_t begin = text.find(kBegin); begin != std::string_view::npos;
         begin = text.find(kBegin, begin + 1)) {
        const std::size_t end = text.find('"', begin + kBegin.size());
        if (end == std::string_view::npos) {
            break;
        }
        values.push_back({begin + kBegin.size(), end});
    }
    return values;
}

/// Changes to a text that mostly leave it well-formed: byte by byte, hardly an input would get past
/// the parser.
class XmlMutator {
public:
    XmlMutator(std::string_view text, unsigned seed) : text_(text), random_(seed) {}

    /// Empty when there is nothing to change.
    std::string mutated() {
        switch (pick(5)) {
            case 0:
                return replaced(elementsOf(text_), {});
            case 1:
                return withElement(false);
            case 2:
                return withElement(true);
            case 3:
                return withValue();
            default:
                return withAttribute();
        }
    }

private:
    std::size_t pick(std::size_t count) { return random_() % count; }
    Span pickOf(const std::vector<Span>& spans) { return spans[pick(spans.size())]; }

    std::string replaced(Span span, std::string_view by) const {
        return std::string(text_.substr(0, span.begin)).append(by).append(text_.substr(span.end));
    }

    std::string replaced(const std::vector<Span>& spans, std::string_view by) {
        return spans.empty() ? std::string() : replaced(pickOf(spans), by);
    }

    /// A copy of an element in the place of another, or in front of it.
    std::string withElement(bool inPlace) {
        const std::vector<Span> elements = elementsOf(text_);
        if (elements.empty()) {
            return {};
        }
        const Span target = pickOf(elements);
        return replaced({target.begin, inPlace ? target.end : target.begin},
                        pickOf(elements).of(text_));
    }

    std::string withValue() {
        const std::vector<Span> values = valuesOf(text_);
        return values.empty() ? std::string() : replaced(values, pickOf(values).of(text_));
    }

    std::string withAttribute() {
        std::vector<Span> places;
        for (const Span& element : elementsOf(text_)) {
            const std::size_t end = text_.find_first_of(" />", element.begin);
            if (text_[element.begin + 1] != '?') {
                places.push_back({end, end});
            }
        }
        return replaced(places, std::string(" ").append(kAttributes[pick(kAttributes.size())]));
    }

    std::string_view text_;
    std::minstd_rand random_;
};

}  // namespace

/// What libFuzzer calls for a new input, in place of its own changes.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    constexpr unsigned kOneInFour = 4;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string mutated =
        seed % kOneInFour == 0 ? std::string() : XmlMutator(text, seed / kOneInFour + 1).mutated();
    if (mutated.empty() || mutated.size() > maxSize) {
        return LLVMFuzzerMutate ? LLVMFuzzerMutate(data, size, maxSize) : size;
    }
    std::copy(mutated.begin(), mutated.end(), data);
    return mutated.size();
}
