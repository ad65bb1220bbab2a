#include "cli/start_tag.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace marrowpress {
namespace {

using Attributes = std::vector<std::pair<std::string, std::string>>;

Attributes attributesOf(std::string_view bytes) {
    const std::optional<StartTag> tag = parseStartTag(bytes);
    Attributes attributes;
    if (tag) {
        for (const TagAttribute& attribute : tag->attributes) {
            attributes.emplace_back(attribute.name, attribute.value);
        }
    }
    return attributes;
}

TEST(ParseStartTagTest, GivesNameAndAttributesAsTheyStand) {
    for (const char* const bytes :
         {R"(<xref href="a&amp;b" scope='it"s'>)", "<xref\r\n href = \"a&amp;b\"\tscope='it\"s' />",
          R"(<xref href="a&amp;b"scope='it"s'/>)"}) {
        const std::optional<StartTag> tag = parseStartTag(bytes);
        ASSERT_TRUE(tag) << bytes;
        EXPECT_EQ(tag->name, "xref");
        EXPECT_EQ(attributesOf(bytes), (Attributes{{"href", "a&amp;b"}, {"scope", "it\"s"}}));
        EXPECT_EQ(tag->attributes[0].quote, '"');
        EXPECT_EQ(tag->attributes[1].quote, '\'');
    }
    EXPECT_EQ(parseStartTag("<a>")->name, "a");
    EXPECT_EQ(parseStartTag("<a:b/>")->name, "a:b");
    EXPECT_EQ(attributesOf("<a b=''/>"), (Attributes{{"b", ""}}));
    EXPECT_EQ(attributesOf("<a b='/>'/>"), (Attributes{{"b", "/>"}}));
}

TEST(ParseStartTagTest, GivesNothingForWhatIsNoTag) {
    for (const char* const bytes : {"", "<", ">", "<a", "a>", "<a b>", "<a b=>", "<a b=c>",
                                    "<a ='c'>", "<a b='c>", "<a b 'c'>"}) {
        EXPECT_FALSE(parseStartTag(bytes)) << bytes;
    }
}

TEST(TextOfValueTest, UndoesReferences) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", ""},
        {"/a b/ü.png", "/a b/ü.png"},
        {"&lt;&gt;&amp;&quot;&apos;", "<>&\"'"},
        {"&#65;&#x42;&#x1F600;&#xFC;&#x20AC;", "AB😀ü€"},
        {"a\tb\nc\r\nd\re", "a b c d e"},
        {"&#9;&#xA;", "\t\n"},
        {"&amp;lt;", "&lt;"}};
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(textOfValue(value), text) << value;
    }
}

TEST(TextOfValueTest, KnowsNoOtherReference) {
    for (const char* const value : {"&", "&amp", "a&b;", "&;", "&#;", "&#x;", "&#0;", "&#xD800;",
                                    "&#x110000;", "&#12x;", "&#99999999999;", "&#-1;", "&# 1;"}) {
        EXPECT_EQ(textOfValue(value), std::nullopt) << value;
    }
}

TEST(ValueOfTextTest, StandsForTheTextBetweenItsQuotes) {
    EXPECT_EQ(valueOfText("/a b/ü.png#x", '"'), "/a b/ü.png#x");
    EXPECT_EQ(valueOfText("<&\"'>\t\n\r", '"'), "&lt;&amp;&quot;'>&#x9;&#xA;&#xD;");
    EXPECT_EQ(valueOfText("<&\"'>\t\n\r", '\''), "&lt;&amp;\"&apos;>&#x9;&#xA;&#xD;");
    const std::string text = "a<&\"'>\t\n\r\u00FC";
    for (const char quote : {'"', '\''}) {
        EXPECT_EQ(textOfValue(valueOfText(text, quote)), text);
    }
}

TEST(AttributeTextTest, IsEmptyForWhatIsMissing) {
    const std::optional<StartTag> tag = parseStartTag("<a b='x&amp;' c='&d;'>");
    EXPECT_EQ(attributeText(*tag, "b"), "x&");
    EXPECT_EQ(attributeText(*tag, "c"), "");
    EXPECT_EQ(attributeText(*tag, "d"), "");
}

}  // namespace
}  // namespace marrowpress
