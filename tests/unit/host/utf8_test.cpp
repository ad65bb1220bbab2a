#include "host/utf8.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

struct Utf8Case {
    const char* name;
    std::string_view text;
    std::string_view valid;  // what becomes of it
};

using namespace std::string_view_literals;

constexpr Utf8Case kUtf8Cases[] = {
    {"Empty", "", ""},
    {"Ascii", "a b\t\r\n", "a b\t\r\n"},
    {"KeepsNul", "a\0b"sv, "a\0b"sv},
    {"TwoBytes", "\xC2\x80 \xDF\xBF", "\xC2\x80 \xDF\xBF"},
    {"ThreeBytes", "\xE0\xA0\x80 \xED\x9F\xBF \xEE\x80\x80 \xEF\xBF\xBF",
     "\xE0\xA0\x80 \xED\x9F\xBF \xEE\x80\x80 \xEF\xBF\xBF"},
    {"FourBytes", "\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF", "\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF"},
    {"SingleByteOfAnotherEncoding", "gr\xFC\xDF", "gr\uFFFD\uFFFD"},
    {"LoneContinuation", "\x80", "\uFFFD"},
    {"OverlongOfTwo", "\xC0\xAF", "\uFFFD\uFFFD"},
    {"OverlongNul", "\xC1\x80", "\uFFFD\uFFFD"},
    {"OverlongOfThree", "\xE0\x9F\xBF", "\uFFFD\uFFFD\uFFFD"},
    {"OverlongOfFour", "\xF0\x8F\xBF\xBF", "\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"FirstSurrogate", "\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
    {"LastSurrogate", "\xED\xBF\xBF", "\uFFFD\uFFFD\uFFFD"},
    {"PastLastCodePoint", "\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"FiveByteLead", "\xF8\x88", "\uFFFD\uFFFD"},
    {"CutOffAtTheEnd", "a\xE2\x82", "a\uFFFD\uFFFD"},
    {"CutOffFour", "\xF0\x9F\x98", "\uFFFD\uFFFD\uFFFD"},
    {"CutOffBeforeAscii", "\xE2\x82z", "\uFFFD\uFFFDz"},
    {"LeadBeforeWholeSequence", "\xE2\xC3\xA4", "\uFFFD\u00E4"},
};

class Utf8Test : public testing::TestWithParam<Utf8Case> {};

TEST_P(Utf8Test, ReplacesEachBadByte) {
    EXPECT_EQ(toValidUtf8(GetParam().text), GetParam().valid);
}

TEST_P(Utf8Test, TellsGoodFromBad) {
    EXPECT_EQ(isValidUtf8(GetParam().text), GetParam().text == GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(, Utf8Test, testing::ValuesIn(kUtf8Cases),
                         [](const auto& c) { return std::string(c.param.name); });

}  // namespace
}  // namespace marrowpress
