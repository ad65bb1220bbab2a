#include "findings/text_position.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TextPosition positionIn(std::string_view text, std::size_t offset) {
    return TextPositions(text).at(offset);
}

TEST(TextPositionsTest, CountsFromOne) {
    EXPECT_EQ(positionIn("", 0), (TextPosition{1, 1}));
    EXPECT_EQ(positionIn("abc", 0), (TextPosition{1, 1}));
    EXPECT_EQ(positionIn("abc", 2), (TextPosition{1, 3}));
}

TEST(TextPositionsTest, LinesEndAtEachKindOfLineEnd) {
    EXPECT_EQ(positionIn("a\nbc", 3), (TextPosition{2, 2}));
    EXPECT_EQ(positionIn("a\r\nbc", 4), (TextPosition{2, 2}));
    EXPECT_EQ(positionIn("a\rbc", 3), (TextPosition{2, 2}));
    EXPECT_EQ(positionIn("\n\r\n\rb", 4), (TextPosition{4, 1}));
}

TEST(TextPositionsTest, ColumnsAreUnitsOfUtf16) {
    EXPECT_EQ(positionIn("\u00E4<", 2), (TextPosition{1, 2}));
    EXPECT_EQ(positionIn("\u20AC<", 3), (TextPosition{1, 2}));
    EXPECT_EQ(positionIn("\U0001F600<", 4), (TextPosition{1, 3}));
}

TEST(TextPositionsTest, PastTheEndIsTheEnd) {
    EXPECT_EQ(positionIn("a\nb", 90), (TextPosition{2, 2}));
    EXPECT_EQ(positionIn("a\nb", std::string_view::npos), (TextPosition{2, 2}));
}

TEST(TextPositionsTest, GoesOnFromTheLastOne) {
    TextPositions positions("ab\ncd");
    EXPECT_EQ(positions.at(1), (TextPosition{1, 2}));
    EXPECT_EQ(positions.at(4), (TextPosition{2, 2}));
    EXPECT_EQ(positions.at(0), (TextPosition{2, 2}));
}

}  // namespace
}  // namespace marrowpress
