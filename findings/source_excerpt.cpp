#include "findings/source_excerpt.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "findings/characters.h"

namespace marrowpress {
namespace {

constexpr std::string_view kCut = "...";
/// The most that a tab takes up: where it stands is not known before the line is cut.
constexpr std::size_t kTabCells = 8;
constexpr std::size_t kLeastWidth = 20;
constexpr std::size_t kMostBytesOfCharacter = 4;

/// A character as it is shown, with the columns that it takes up.
struct Piece {
    std::string text;
    std::size_t cells;
};

std::optional<std::size_t> offsetOf(std::string_view line, std::uint32_t column) {
    if (column == 0) {
        return std::nullopt;
    }
    std::size_t offset = 0;
    std::size_t unitsAhead = column - 1;
    while (unitsAhead > 0 && offset < line.size()) {
        const Character character = firstCharacter(line.substr(offset));
        if (utf16Length(character) > unitsAhead) {
            return offset;
        }
        unitsAhead -= utf16Length(character);
        offset += character.bytes.size();
    }
    return unitsAhead == 0 ? std::optional(offset) : std::nullopt;
}

/// The first offset from `offset` on where a character may start.
std::size_t characterStart(std::string_view line, std::size_t offset) {
    const auto continues = [&line](std::size_t index) {
        return (static_cast<unsigned char>(line[index]) & 0xC0U) == 0x80U;
    };
    std::size_t start = offset;
    while (start < line.size() && start < offset + kMostBytesOfCharacter && continues(start)) {
        ++start;
    }
    return start;
}

void appendPieces(std::vector<Piece>& pieces, std::string_view text) {
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        if (character.codePoint == '\t') {
            pieces.push_back({"\t", kTabCells});
        } else {
            std::string shown = shownCharacter(character);
            const std::size_t cells = cellsOf(shown);
            pieces.push_back({std::move(shown), cells});
        }
        text.remove_prefix(character.bytes.size());
    }
}

/// The pieces round a place, and which of them are shown.
class Window {
public:
    /// Looks no further than could be shown: a line may have megabytes.
    Window(std::string_view line, std::size_t offset, std::size_t width) {
        const std::size_t reach = width * kMostBytesOfCharacter;
        const std::size_t begin = offset > reach ? characterStart(line, offset - reach) : 0;
        const std::size_t end = characterStart(line, std::min(line.size(), offset + reach));
        appendPieces(pieces_, line.substr(begin, offset - begin));
        place_ = pieces_.size();
        appendPieces(pieces_, line.substr(offset, end - offset));
        first_ = 0;
        last_ = pieces_.size();
        isCutBefore_ = begin > 0;
        isCutBehind_ = end < line.size();
        if (isCutBefore_ || isCutBehind_ || cellsOfAll() > width) {
            narrow(width - 2 * kCut.size());
        }
    }

    std::string line() const {
        std::string text(isCutBefore_ ? kCut : "");
        for (std::size_t index = first_; index < last_; ++index) {
            text += pieces_[index].text;
        }
        text += isCutBehind_ ? kCut : "";
        return text;
    }

    std::string caret() const {
        std::string text(isCutBefore_ ? kCut.size() : 0, ' ');
        for (std::size_t index = first_; index < place_; ++index) {
            const Piece& piece = pieces_[index];
            text += piece.text == "\t" ? piece.text : std::string(piece.cells, ' ');
        }
        return text + '^';
    }

private:
    std::size_t cellsOfAll() const {
        std::size_t cells = 0;
        for (const Piece& piece : pieces_) {
            cells += piece.cells;
        }
        return cells;
    }

    /// Takes in pieces around the place while `cells` columns hold them: half of them before it,
    /// then those behind it, then before it again where the line ends.
    void narrow(std::size_t cells) {
        std::size_t used = 0;
        const std::size_t count = pieces_.size();
        const auto takeBefore = [&](std::size_t most) {
            while (first_ > 0 && used + pieces_[first_ - 1].cells <= most) {
                used += pieces_[--first_].cells;
            }
        };
        first_ = place_;
        last_ = place_;
        takeBefore(cells / 2);
        while (last_ < count && used + pieces_[last_].cells <= cells) {
            used += pieces_[last_++].cells;
        }
        takeBefore(cells);
        isCutBefore_ = isCutBefore_ || first_ > 0;
        isCutBehind_ = isCutBehind_ || last_ < count;
    }

    std::vector<Piece> pieces_;
    std::size_t place_ = 0;
    std::size_t first_ = 0;
    std::size_t last_ = 0;
    bool isCutBefore_ = false;
    bool isCutBehind_ = false;
};

}  // namespace

SourceExcerpt excerptOf(std::string_view line, std::uint32_t column, std::size_t width) {
    const std::optional<std::size_t> offset = offsetOf(line, column);
    const Window window(line, offset.value_or(0), std::max(width, kLeastWidth));
    return {window.line(), offset ? window.caret() : std::string()};
}

}  // namespace marrowpress
