#include "findings/source_excerpt.h"

#include <gtest/gtest.h>

#include "findings/characters.h"
#include "host/utf8.h"

namespace marrowpress {
namespace {

struct Case {
    std::string source;
    std::uint32_t column;
    const char* line;
    const char* caret;
};

TEST(SourceExcerptTest, TheCaretStandsBelowTheColumn) {
    const Case cases[] = {
        {"<p/>", 1, "<p/>", "^"},
        {"  <p/>", 3, "  <p/>", "  ^"},
        {"<p/>", 5, "<p/>", "    ^"},
        {"", 1, "", "^"},
        {"\t<b>\t<p/>", 6, "\t<b>\t<p/>", "\t   \t^"},
        {"\xC3\xBC<p/>", 2, "\xC3\xBC<p/>", " ^"},
        {"\xE6\xBC\xA2<p/>", 2, "\xE6\xBC\xA2<p/>", "  ^"},
        {"\xF0\x9F\x94\xA7<p/>", 3, "\xF0\x9F\x94\xA7<p/>", "  ^"},
        {"u\xCC\x88<p/>", 3, "u\xCC\x88<p/>", " ^"},
        {"\xFC<p/>", 2, "\\xFC<p/>", "    ^"},
        {"\x1B[m<p/>", 4, "\\x1B[m<p/>", "      ^"},
    };
    for (const Case& sample : cases) {
        const SourceExcerpt excerpt = excerptOf(sample.source, sample.column, 80);
        EXPECT_EQ(excerpt.line, sample.line);
        EXPECT_EQ(excerpt.caret, sample.caret) << sample.line;
    }
}

TEST(SourceExcerptTest, AColumnThatIsNotThereHasNoCaret) {
    for (const std::uint32_t column : {0U, 6U, 4'000'000'000U}) {
        const SourceExcerpt excerpt = excerptOf("<p/>", column, 80);
        EXPECT_EQ(excerpt.line, "<p/>");
        EXPECT_EQ(excerpt.caret, "") << column;
    }
}

TEST(SourceExcerptTest, AColumnInsideASurrogatePairIsThatOfItsCharacter) {
    EXPECT_EQ(excerptOf("\xF0\x9F\x94\xA7<p/>", 2, 80).caret, "^");
}

TEST(SourceExcerptTest, ALongLineIsCutRoundThePlace) {
    const Case cases[] = {
        {"0123456789012345678<p/>", 1, "01234567890123...", "^"},
        {"0123456789012345678<p/>", 20,
         "...0123456789<p/>"
         "",
         ""},
    };
    EXPECT_EQ(excerptOf(cases[0].source, 1, 20).line, cases[0].line);
    EXPECT_EQ(excerptOf(cases[0].source, 1, 20).caret, "^");
    const SourceExcerpt end = excerptOf("0123456789012345678<p/>", 20, 20);
    EXPECT_EQ(end.line, "...9012345678<p/>");
    EXPECT_EQ(end.caret, "             ^");
    const SourceExcerpt middle = excerptOf("01234567890123456789<p/>01234567890123456789", 21, 20);
    EXPECT_EQ(middle.line, "...3456789<p/>012...");
    EXPECT_EQ(middle.caret, "          ^");
}

TEST(SourceExcerptTest, WhatFitsIsNotCut) {
    const std::string line(20, 'x');
    EXPECT_EQ(excerptOf(line, 1, 20).line, line);
    EXPECT_EQ(excerptOf(line + 'x', 1, 20).line, std::string(14, 'x') + "...");
}

TEST(SourceExcerptTest, IsNeverWiderThanTheWidthAndBreaksNoCharacter) {
    std::string line;
    for (int i = 0; i < 300; ++i) {
        line += "a\xC3\xBC\xE6\xBC\xA2\xF0\x9F\x94\xA7\xFF\xCC\x88";
    }
    for (const std::size_t width : {20U, 33U, 80U}) {
        for (std::uint32_t column = 1; column < 2100; ++column) {
            const SourceExcerpt excerpt = excerptOf(line, column, width);
            ASSERT_TRUE(isValidUtf8(excerpt.line)) << column;
            ASSERT_LE(cellsOf(excerpt.line), width) << column;
            ASSERT_LE(cellsOf(excerpt.caret), width) << column;
        }
    }
}

TEST(SourceExcerptTest, TabsCountAsTheWidestSoThatNoLineIsTooWide) {
    const std::string line = std::string(9, '\t') + "<p/>" + std::string(9, '\t');
    const SourceExcerpt excerpt = excerptOf(line, 10, 40);
    EXPECT_EQ(excerpt.line, "...\t\t<p/>\t...");
    EXPECT_EQ(excerpt.caret, "   \t\t^");
}

TEST(SourceExcerptTest, AWidthThatShowsNothingIsNotTaken) {
    EXPECT_EQ(excerptOf("01234567890123456789", 1, 0).line, "01234567890123456789");
}

}  // namespace
}  // namespace marrowpress
