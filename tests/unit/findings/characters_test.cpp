#include "findings/characters.h"

#include <gtest/gtest.h>

#include "host/utf8.h"

namespace marrowpress {
namespace {

TEST(ShownTextTest, EscapesWhatATerminalWouldTakeForMoreThanText) {
    struct Case {
        std::string text;
        const char* shown;
    };
    const Case cases[] = {
        {"", ""},
        {"a b \\ `c` ~", "a b \\ `c` ~"},
        {"\xC3\xBC \xE6\xBC\xA2 \xF0\x9F\x94\xA7", "\xC3\xBC \xE6\xBC\xA2 \xF0\x9F\x94\xA7"},
        {"a\nb\rc\td", "a\\nb\\rc\\td"},
        {"\x1B[31m\a\x7F", "\\x1B[31m\\x07\\x7F"},
        {std::string("a\0b", 3), "a\\x00b"},
        {"\xC2\x9B"
         "31m",
         "\\u009B31m"},
        {"\xE2\x80\xA8\xE2\x80\xA9\xE2\x80\xAE", "\\u2028\\u2029\\u202E"},
        {"\xC2\xAD\xEF\xBB\xBF", "\\u00AD\\uFEFF"},
        {"\xF3\xA0\x80\x81", "\\U000E0001"},
        {"\xD9\x85\xE2\x80\x8C\xE2\x80\x8D", "\xD9\x85\xE2\x80\x8C\xE2\x80\x8D"},
        {"latin \xFC", "latin \\xFC"},
        {"\xE2\x82", "\\xE2\\x82"},
        {"\xC0\xAF\xED\xA0\x80", "\\xC0\\xAF\\xED\\xA0\\x80"},
    };
    for (const Case& sample : cases) {
        EXPECT_EQ(shownText(sample.text), sample.shown);
    }
}

TEST(ShownTextTest, IsValidUtf8WhateverCameIn) {
    std::string bytes;
    for (int first = 0; first < 256; ++first) {
        for (const int second : {0x00, 0x41, 0x80, 0xBF, 0xC3, 0xFF}) {
            bytes += static_cast<char>(first);
            bytes += static_cast<char>(second);
        }
    }
    const std::string shown = shownText(bytes);
    EXPECT_TRUE(isValidUtf8(shown));
    EXPECT_EQ(shown.find_first_of("\r\n\x1B"), std::string::npos);
}

TEST(FirstCharacterTest, IsAWholeSequenceOrOneByte) {
    EXPECT_EQ(firstCharacter("\xC3\xBCx").bytes, "\xC3\xBC");
    EXPECT_EQ(firstCharacter("\xC3\xBCx").codePoint, 0xFC);
    EXPECT_EQ(firstCharacter("\xC3").bytes, "\xC3");
    EXPECT_EQ(firstCharacter("\xC3").codePoint, -1);
    EXPECT_EQ(firstCharacter("x").codePoint, 'x');
}

TEST(Utf16LengthTest, IsTwoBehindTheBasicPlane) {
    for (const char* const text : {"x", "\xC3\xBC", "\xEF\xBF\xBD", "\xFC"}) {
        EXPECT_EQ(utf16Length(firstCharacter(text)), 1U) << text;
    }
    EXPECT_EQ(utf16Length(firstCharacter("\xF0\x9F\x94\xA7")), 2U);
}

TEST(CellsOfTest, WideCharactersTakeTwoAndCombiningOnesNone) {
    EXPECT_EQ(cellsOf(""), 0U);
    EXPECT_EQ(cellsOf("abc"), 3U);
    EXPECT_EQ(cellsOf("\xC3\xBC"), 1U);
    EXPECT_EQ(cellsOf("u\xCC\x88"), 1U);
    EXPECT_EQ(cellsOf("\xE6\xBC\xA2\xE5\xAD\x97"), 4U);
    EXPECT_EQ(cellsOf("\xF0\x9F\x94\xA7"), 2U);
}

}  // namespace
}  // namespace marrowpress
