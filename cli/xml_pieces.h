#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace marrowpress {

/// Some bytes of a document.
struct XmlPiece {
    std::string_view bytes;
    bool isStartTag;  ///< A whole start tag, or that of an empty element. Else anything but one.
    bool isEndTag = false;  ///< The first bytes of an end tag.
};

/// Cuts a well-formed document in UTF-8 into its start tags and what stands between them. All
/// pieces, one behind the other, are the document's bytes. What only looks like a tag, in a
/// comment, a CDATA section, an instruction or the doctype, is none.
///
/// Parsers tell where a tag ends and not where a value stands in it, and what they give has lost
/// its entities, quotes and blanks: none can write a document again with all of its bytes.
///
/// Takes memory for a block, or for the longest tag.
class XmlPieces {
public:
    /// Puts at most that many bytes at that place, and gives their number, which is 0 at the end.
    using Source = std::function<std::size_t(char*, std::size_t)>;

    explicit XmlPieces(Source source);

    /// The next piece, which lasts until the next call; empty behind the last one. Throws what the
    /// source throws.
    std::optional<XmlPiece> next();

private:
    std::string_view window() const;
    XmlPiece take(std::size_t size, bool isStartTag, bool isEndTag = false);
    bool readMore();
    XmlPiece takeThroughEnd();
    std::optional<XmlPiece> takeMarkup();
    bool startsAs(std::string_view opening);

    Source source_;
    std::string buffer_;
    std::size_t begin_ = 0;  ///< Of what was read and not given away, in the buffer.
    std::size_t end_ = 0;
    std::string_view closing_;  ///< Of what is open, and is given away in parts; else empty.
};

}  // namespace marrowpress
