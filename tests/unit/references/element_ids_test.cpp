#include "references/element_ids.h"

#include <gtest/gtest.h>

#include <optional>

#include "tests/support/without_short_cuts.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

class ElementIdsTest : public XmlTest {
protected:
    static std::string markOf(const xercesc::DOMElement* element) {
        return element ? attribute(*element, "mark") : "none";
    }
};

TEST_F(ElementIdsTest, GivesTheFirstOfThatIdAndNameHoweverOftenItIsAsked) {
    const ParsedXml document(
        "<r id='r' mark='0'><a id='x' mark='1'/><b id='x' mark='2'><a id='x' mark='3'/></b>"
        "<a id='y' mark='4'/><a mark='5'/></r>");
    for (const bool takesShortCuts : {true, false}) {
        std::optional<WithoutShortCuts> without;
        if (!takesShortCuts) {
            without.emplace();
        }
        ElementIds ids;
        for (int round = 0; round < 3; ++round) {
            for (const auto& [id, name, mark] : {std::tuple(u"x", u"", "1"),
                                                 {u"x", u"b", "2"},
                                                 {u"x", u"c", "none"},
                                                 {u"y", u"", "4"},
                                                 {u"r", u"r", "0"},
                                                 {u"z", u"", "none"}}) {
                EXPECT_EQ(markOf(ids.find(*document.root(), id, name)), mark) << round;
            }
            EXPECT_EQ(markOf(ids.find(*document.byId("r"), u"y")), "4");
        }
    }
}

TEST_F(ElementIdsTest, AnotherElementHasIdsOfItsOwn) {
    const ParsedXml document(
        "<r><p id='one'><a id='x' mark='1'/></p><p id='two'><a id='x' mark='2'/></p></r>");
    ElementIds ids;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(markOf(ids.find(*document.byId("one"), u"x")), "1");
        EXPECT_EQ(markOf(ids.find(*document.byId("two"), u"x")), "2");
    }
}

TEST_F(ElementIdsTest, WhatHasChangedIsSearchedFor) {
    const ParsedXml document("<r><a id='x' mark='1'/><a id='y' mark='2'/></r>");
    ElementIds ids;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(markOf(ids.find(*document.root(), u"x")), "1");
    }
    xercesc::DOMElement& first = *document.byId("x");
    ids.noteChange(first);
    document.root()->removeChild(&first);
    EXPECT_EQ(markOf(ids.find(*document.root(), u"x")), "none");
    document.root()->appendChild(&first);
    EXPECT_EQ(markOf(ids.find(*document.root(), u"x")), "1");
    EXPECT_EQ(markOf(ids.find(*document.root(), u"y")), "2");
}

TEST_F(ElementIdsTest, ManySearchesLookAtEachElementTwice) {
    std::string many;
    for (int index = 0; index < 5000; ++index) {
        many += "<a id='a" + std::to_string(index) + "'/>";
    }
    const ParsedXml document("<r>" + many + "</r>");
    ElementIds ids;
    for (int search = 0; search < 1000; ++search) {
        ASSERT_TRUE(ids.find(*document.root(), u"a4999"));
    }
    EXPECT_EQ(ids.takeSearched(), 2U * 5001U);
    EXPECT_EQ(ids.takeSearched(), 0U);
}

}  // namespace
}  // namespace marrowpress
