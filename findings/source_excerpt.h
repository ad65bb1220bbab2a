#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace marrowpress {

/// A source line as a terminal shows it, and the line below with a caret under a place of it.
struct SourceExcerpt {
    std::string line;
    std::string caret;  ///< Empty when the line has no such column.
};

/// `line` cut round the column, from 1 in UTF-16 code units, so that it isn't wider than `width`
/// columns of a terminal; "..." stands for what is cut. Tabs stay, as the blanks above the caret
/// too; what else can't be seen, or is no UTF-8, is escaped.
SourceExcerpt excerptOf(std::string_view line, std::uint32_t column, std::size_t width);

}  // namespace marrowpress
