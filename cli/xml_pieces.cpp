#include "cli/xml_pieces.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace marrowpress {
namespace {

constexpr std::size_t kBlock = 262144;

/// What may have any length, and has no tags in it.
struct Section {
    std::string_view opening;
    std::string_view closing;
};
constexpr std::string_view kEndTag = "</";
constexpr std::array kSections{Section{"<!--", "-->"}, Section{"<![CDATA[", "]]>"},
                               Section{"<?", "?>"}, Section{kEndTag, ">"}};

/// How many bytes the tag has that `text` begins with; 0 when its end is not there.
std::size_t tagSize(std::string_view text) {
    char quote = 0;
    for (std::size_t at = 1; at < text.size(); ++at) {
        const char unit = text[at];
        if (quote != 0) {
            const void* const end = std::memchr(text.data() + at, quote, text.size() - at);
            if (!end) {
                return 0;
            }
            at = static_cast<std::size_t>(static_cast<const char*>(end) - text.data());
            quote = 0;
        } else if (unit == '>') {
            return at + 1;
        } else if (unit == '"' || unit == '\'') {
            quote = unit;
        }
    }
    return 0;
}

/// The first byte behind the `closing` of what begins at `at`; npos when it is not there.
std::size_t behind(std::string_view text, std::string_view closing, std::size_t at) {
    const std::size_t found = text.find(closing, at);
    return found == std::string_view::npos ? found : found + closing.size();
}

/// How many bytes the doctype has that `text` begins with; 0 when its end is not there.
std::size_t doctypeSize(std::string_view text) {
    bool isInSubset = false;
    std::size_t at = 1;
    while (at < text.size()) {
        const std::string_view rest = text.substr(at);
        if (rest.front() == '>' && !isInSubset) {
            return at + 1;
        }
        if (rest.front() == '[' || rest.front() == ']') {
            isInSubset = rest.front() == '[';
        }
        if (rest.front() == '"' || rest.front() == '\'') {
            at = behind(text, rest.substr(0, 1), at + 1);
        } else if (rest.starts_with("<!--")) {
            at = behind(text, "-->", at + 4);
        } else if (rest.starts_with("<?")) {
            at = behind(text, "?>", at + 2);
        } else {
            ++at;
        }
    }
    return 0;
}

}  // namespace

XmlPieces::XmlPieces(Source source) : source_(std::move(source)), buffer_(kBlock, '\0') {}

std::string_view XmlPieces::window() const {
    return std::string_view(buffer_).substr(begin_, end_ - begin_);
}

XmlPiece XmlPieces::take(std::size_t size, bool isStartTag, bool isEndTag) {
    const std::string_view bytes = window().substr(0, size);
    begin_ += size;
    return {bytes, isStartTag, isEndTag};
}

/// False at the end of the source. Ends what the window was before.
bool XmlPieces::readMore() {
    if (begin_ > 0) {
        std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
                  buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
        end_ -= begin_;
        begin_ = 0;
    }
    if (end_ == buffer_.size()) {
        buffer_.resize(2 * buffer_.size());
    }
    const std::size_t count = source_(buffer_.data() + end_, buffer_.size() - end_);
    end_ += count;
    return count > 0;
}

std::optional<XmlPiece> XmlPieces::next() {
    if (begin_ == end_ && !readMore()) {
        return std::nullopt;
    }
    if (!closing_.empty()) {
        return takeThroughEnd();
    }
    const std::size_t markup = window().find('<');
    if (markup != 0) {
        return take(std::min(markup, window().size()), /*isStartTag=*/false);
    }
    return takeMarkup();
}

/// The rest of an open section, as far as it has been read.
XmlPiece XmlPieces::takeThroughEnd() {
    while (window().size() < closing_.size()) {
        if (!readMore()) {
            return take(window().size(), /*isStartTag=*/false);
        }
    }
    const std::size_t end = behind(window(), closing_, 0);
    if (end == std::string_view::npos) {
        // The end may have begun.
        return take(window().size() - closing_.size() + 1, /*isStartTag=*/false);
    }
    closing_ = {};
    return take(end, /*isStartTag=*/false);
}

std::optional<XmlPiece> XmlPieces::takeMarkup() {
    for (const Section& section : kSections) {
        if (startsAs(section.opening)) {
            closing_ = section.closing;
            return take(section.opening.size(), /*isStartTag=*/false, section.opening == kEndTag);
        }
    }
    const bool isStartTag = !startsAs("<!");
    std::size_t size = 0;
    while ((size = isStartTag ? tagSize(window()) : doctypeSize(window())) == 0) {
        if (!readMore()) {
            return take(window().size(), /*isStartTag=*/false);
        }
    }
    return take(size, isStartTag);
}

/// Whether the window begins with `opening`, for which more may be read.
bool XmlPieces::startsAs(std::string_view opening) {
    while (window().size() < opening.size() && opening.starts_with(window())) {
        if (!readMore()) {
            return false;
        }
    }
    return window().starts_with(opening);
}

}  // namespace marrowpress
