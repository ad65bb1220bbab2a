#include "support/text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>
#include <new>

#include "tests/support/refused_converters.h"

namespace marrowpress {
namespace {

struct TextCase {
    const char* name;
    std::string utf8;
    std::u16string utf16;
};

// Pairs that stand for each other in both directions.
const TextCase kPairs[] = {
    {"Empty", "", u""},
    {"Ascii", "topic/p#a b", u"topic/p#a b"},
    {"Delete", "\x7F", u"\x7F"},
    {"FirstOfTwoBytes", "\xC2\x80", u"\u0080"},
    {"LastOfTwoBytes", "\xDF\xBF", u"\u07FF"},
    {"FirstOfThreeBytes", "\xE0\xA0\x80", u"\u0800"},
    {"LastBeforeTheSurrogates", "\xED\x9F\xBF", u"\uD7FF"},
    {"FirstBehindTheSurrogates", "\xEE\x80\x80", u"\uE000"},
    {"LastOfThreeBytes", "\xEF\xBF\xBF", u"\uFFFF"},
    {"FirstOfFourBytes", "\xF0\x90\x80\x80", u"\U00010000"},
    {"LastOfFourBytes", "\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
    {"Umlauts", "Schl\xC3\xBCssel", u"Schl\u00FCssel"},
    {"Emoji", "a\xF0\x9F\x98\x80z", u"a\U0001F600z"},
    {"Combining", "a\xCC\x88", u"a\u0308"},
    {"Precomposed", "\xC3\xA4", u"\u00E4"},
    {"Tab", "a\tb", u"a\tb"},
    {"OnlyControls", "\t\n\r", u"\t\n\r"},
    {"ControlsAround", "\x01\xC3\xA4\x1F", u"\x01\u00E4\x1F"},
    {"BlankIsNoControl", " ", u" "},
};

TEST(ToUtf16Test, Converts) {
    for (const TextCase& pair : kPairs) {
        EXPECT_EQ(toUtf16(std::string_view(pair.utf8)), pair.utf16) << pair.name;
        EXPECT_EQ(toUtf16(pair.utf8.c_str()), pair.utf16) << pair.name;
    }
}

TEST(ToUtf8Test, Converts) {
    for (const TextCase& pair : kPairs) {
        EXPECT_EQ(toUtf8(std::u16string_view(pair.utf16)), pair.utf8) << pair.name;
        EXPECT_EQ(toUtf8(pair.utf16.c_str()), pair.utf8) << pair.name;
    }
}

TEST(ToUtf16Test, EachControlCharacterIsCarriedOver) {
    for (char control = 1; control < 0x20; ++control) {
        const std::string text = {'a', control, control, 'b'};
        const auto unit = static_cast<char16_t>(control);
        EXPECT_EQ(toUtf16(std::string_view(text)), (std::u16string{u'a', unit, unit, u'b'}));
    }
}

TEST(ToUtf8Test, EachControlCharacterIsCarriedOver) {
    for (char16_t control = 1; control < 0x20; ++control) {
        const std::u16string text = {u'a', control, control, u'b'};
        const auto unit = static_cast<char>(control);
        EXPECT_EQ(toUtf8(std::u16string_view(text)), (std::string{'a', unit, unit, 'b'}));
    }
}

// A converter counts what it gets in 32 bits, three bytes for each code unit.
TEST(ToUtf8Test, ATextOfAnyLengthIsConverted) {
    constexpr std::size_t kUnits = (std::size_t{1} << 20) + 3;
    std::u16string text(kUnits, u'x');
    // A pair of surrogates where a piece would end.
    text.replace((std::size_t{1} << 20) - 1, 2, u"\U0001F600");
    const std::string narrow = toUtf8(std::u16string_view(text));
    ASSERT_EQ(narrow.size(), kUnits + 2);
    EXPECT_EQ(narrow.substr((std::size_t{1} << 20) - 2, 8), "x\xF0\x9F\x98\x80xx");
    EXPECT_EQ(toUtf16(std::string_view(narrow)), text);
}

TEST(ToUtf16Test, NullGivesNothing) {
    EXPECT_EQ(toUtf16(static_cast<const char*>(nullptr)), std::nullopt);
}

TEST(ToUtf8Test, NullGivesNothing) {
    EXPECT_EQ(toUtf8(static_cast<const char16_t*>(nullptr)), std::nullopt);
}

TEST(ToUtf16Test, EndsAtTheFirstNul) {
    EXPECT_EQ(toUtf16(std::string_view("ab\0cd", 5)), u"ab");
    EXPECT_EQ(toUtf16(std::string_view("\0cd", 3)), u"");
    EXPECT_EQ(toUtf16(std::string_view("ab\0\xFF", 4)), u"ab");
}

TEST(ToUtf8Test, EndsAtTheFirstNul) {
    EXPECT_EQ(toUtf8(std::u16string_view(u"ab\0cd", 5)), "ab");
    EXPECT_EQ(toUtf8(std::u16string_view(u"\0cd", 3)), "");
}

TEST(ToUtf16Test, AMalformedTextIsReplacedAsAWhole) {
    const std::string malformed[] = {
        "\x80",  // continuation first
        "\xBF",
        "\xC0\x80",  // lead bytes that never are
        "\xC1\xBF",
        "\xF5\x80\x80\x80",
        "\xFE",
        "\xFF",
        "\xFFxyz",
        "\xC2",  // ends inside
        "\xE2\x82",
        "\xE2",
        "\xF0\x9F\x98",
        "\xF0\x9F",
        "\xF0",
        "\xC2Z",  // no continuation
        "\xC2\x7F",
        "\xC2\xC0",
        "\xE2\x82Z",
        "\xE2Z\x82",
        "\xE2\x82\xFF",
        "\xF0\x9F\x98Z",
        "\xF0\x9F\x98\xC0",
        "\xC3\n\xA4",    // a control character inside
        "\xC3\xA4\x80",  // one continuation too many
        "long and good until its end\xFF",
        "\xFF long and good from there on",
        "a\tb\nc\x80",
        std::string("\xC2\0\x80", 3),
    };
    for (const std::string& text : malformed) {
        EXPECT_EQ(toUtf16(std::string_view(text)), u"???") << testing::PrintToString(text);
        EXPECT_EQ(toUtf16(text.c_str()), u"???") << testing::PrintToString(text);
    }
}

TEST(ToUtf16Test, SomeForbiddenFormsPassTheTestAndLeaveTheRestStanding) {
    struct {
        const char* text;
        std::u16string expected;
    } const cases[] = {
        {"a\xE0\x80\x80z", u"a\uFFFD\uFFFD\uFFFDz"},  // overlong, three bytes
        {"a\xE0\x9F\xBFz", u"a\uFFFD\uFFFD\uFFFDz"},
        {"a\xF0\x80\x80\x80z", u"a\uFFFD\uFFFD\uFFFD\uFFFDz"},  // overlong, four bytes
        {"a\xED\xA0\x80z", u"a\uFFFD\uFFFD\uFFFDz"},            // surrogates
        {"a\xED\xBF\xBFz", u"a\uFFFD\uFFFD\uFFFDz"},
        {"a\xF4\x90\x80\x80z", u"a\uFFFD\uFFFD\uFFFD\uFFFDz"},  // beyond the last character
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(toUtf16(std::string_view(text)), expected) << testing::PrintToString(text);
    }
}

TEST(ToUtf8Test, ALoneSurrogateIsReplaced) {
    struct {
        std::u16string text;
        const char* expected;
    } const cases[] = {
        {{0xD83D}, "\xEF\xBF\xBD"},
        {{0xDE00}, "\xEF\xBF\xBD"},
        {{u'a', 0xD83D, u'b'},
         "a\xEF\xBF\xBD"
         "b"},
        {{u'a', 0xDE00, u'b'},
         "a\xEF\xBF\xBD"
         "b"},
        {{0xDE00, 0xD83D}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {{0xD83D, u'\t', 0xDE00}, "\xEF\xBF\xBD\t\xEF\xBF\xBD"},
        {{0xD83D, 0xD83D, 0xDE00}, "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(toUtf8(std::u16string_view(text)), expected) << testing::PrintToString(text);
    }
}

TEST(TextConversionTest, LongTextsComeBack) {
    std::string utf8;
    for (int count = 0; count < 50000; ++count) {
        utf8 += "x\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";
        utf8 += count % 100 == 0 ? "\n" : "";
    }
    const std::u16string utf16 = toUtf16(std::string_view(utf8));
    EXPECT_EQ(utf16.size(), 50000U * 5 + 500);
    EXPECT_EQ(toUtf8(std::u16string_view(utf16)), utf8);
}

TEST(SplitTokensTest, CutsAtBlanksOnly) {
    using Tokens = std::vector<std::u16string_view>;
    struct {
        std::u16string_view text;
        Tokens tokens;
    } const cases[] = {
        {u"", {}},
        {u" ", {}},
        {u"     ", {}},
        {u"one", {u"one"}},
        {u"one two", {u"one", u"two"}},
        {u"  one   two  ", {u"one", u"two"}},
        {u" one", {u"one"}},
        {u"one ", {u"one"}},
        {u"a b c", {u"a", u"b", u"c"}},
        {u"one\ttwo\nthree\rfour", {u"one\ttwo\nthree\rfour"}},
        {u"\t", {u"\t"}},
        {u"\t \n", {u"\t", u"\n"}},
        {u"one\u00A0two\u3000three", {u"one\u00A0two\u3000three"}},
        {u"- topic/p ", {u"-", u"topic/p"}},
        {{u"a\0b c", 5}, {{u"a\0b", 3}, u"c"}},
        {u"\U0001F600 x", {u"\U0001F600", u"x"}},
    };
    for (const auto& [text, tokens] : cases) {
        EXPECT_EQ(splitTokens(text), tokens) << testing::PrintToString(std::u16string(text));
    }
}

TEST(SplitTokensTest, TokensPointIntoTheText) {
    const std::u16string text = u" one two";
    const std::vector<std::u16string_view> tokens = splitTokens(text);
    ASSERT_EQ(tokens.size(), 2U);
    EXPECT_EQ(tokens[0].data(), text.data() + 1);
    EXPECT_EQ(tokens[1].data(), text.data() + 5);
}

TEST(U16HashTest, TextsAndViewsHashAlike) {
    const std::u16string text = u"key";
    EXPECT_EQ(U16Hash{}(text), U16Hash{}(std::u16string_view(u"key")));
    EXPECT_NE(U16Hash{}(u"key"), U16Hash{}(u"Key"));
}

// The converter of a process is opened once, when that succeeds.
TEST(ConverterStartDeathTest, WithoutAConverterTheRunsBetweenControlCharactersAreLost) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            bool isAsTold = false;
            {
                const RefusedConverters refused;
                isAsTold = toUtf16(std::string_view("a\tb\nc")) == u"\t\n" &&
                           toUtf8(std::u16string_view(u"a\nb\x01")) == "\n\x01" &&
                           toUtf16(std::string_view("\xFF")) == u"???";
            }
            const bool isTriedAgain = toUtf16(std::string_view("a\tb")) == u"a\tb";
            std::_Exit(isAsTold && isTriedAgain ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(ConverterStartDeathTest, WithoutMemoryForAConverterNoTextIsLost) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const RefusedConverters refused(0, U_MEMORY_ALLOCATION_ERROR);
            try {
                toUtf16(std::string_view("a"));
            } catch (const std::bad_alloc&) {
                std::_Exit(0);
            }
            std::_Exit(1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace marrowpress
