#include "dom/nodes.h"

#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using xercesc::DOMNode;

using NodesTest = XmlTest;

/// Every kind of child, with what is below them.
constexpr const char* kMixed = "<p>1<a id='a'><b id='b'/></a><!--2--><?three?><c id='c'/></p>";

std::string printedAll(const std::vector<DOMNode*>& nodes) {
    std::string text;
    for (const DOMNode* const node : nodes) {
        text += printed(*node) + "|";
    }
    return text;
}

TEST_F(NodesTest, AsElementGivesElementsAlone) {
    const ParsedXml parsed("<p>text</p>");
    EXPECT_EQ(asElement(parsed.root()), parsed.root());
    EXPECT_EQ(asElement(parsed.root()->getFirstChild()), nullptr);
    EXPECT_EQ(asElement(static_cast<const DOMNode*>(nullptr)), nullptr);
    EXPECT_EQ(asElement(static_cast<DOMNode*>(nullptr)), nullptr);
}

TEST_F(NodesTest, SiblingsAreGivenFromTheFirstToTheStop) {
    const ParsedXml parsed(kMixed);
    DOMNode* const first = parsed.byId("a");
    const DOMNode* const last = parsed.byId("c");
    EXPECT_EQ(printedAll(siblingsFrom(first)),
              "<a id=\"a\"><b id=\"b\"/></a>|<!--2-->|<?three?>|<c id=\"c\"/>|");
    EXPECT_EQ(printedAll(siblingsFrom(first, last)),
              "<a id=\"a\"><b id=\"b\"/></a>|<!--2-->|<?three?>|");
    EXPECT_EQ(printedAll(siblingsFrom(first, first)), "");
    EXPECT_EQ(printedAll(siblingsFrom(nullptr)), "");
    // What isn't behind it stops nothing.
    EXPECT_EQ(siblingsFrom(first, first->getPreviousSibling()).size(), 4U);
}

TEST_F(NodesTest, ChildrenAreOfEveryKind) {
    const ParsedXml parsed(kMixed);
    EXPECT_EQ(printedAll(childrenOf(*parsed.root())),
              "1|<a id=\"a\"><b id=\"b\"/></a>|<!--2-->|<?three?>|<c id=\"c\"/>|");
    EXPECT_TRUE(childrenOf(*parsed.byId("c")).empty());
}

TEST_F(NodesTest, AListOfChildrenStaysAsItWas) {
    const ParsedXml parsed("<p><a/></p>");
    for (DOMNode* const child : childrenOf(*parsed.root())) {
        parsed.root()->appendChild(child->cloneNode(true));
    }
    EXPECT_EQ(printed(*parsed.root()), "<p><a/><a/></p>");
}

TEST_F(NodesTest, ChildElementsAreTheDirectOnesAlone) {
    const ParsedXml parsed(kMixed);
    EXPECT_EQ(idsOf(childElementsOf(*parsed.root())), "a c");
    EXPECT_TRUE(childElementsOf(*ParsedXml("<p>1<!--2--></p>").root()).empty());
}

TEST_F(NodesTest, RemovedChildrenStayAlive) {
    const ParsedXml parsed(kMixed);
    const DOMNode* const child = parsed.byId("a");
    removeChildren(*parsed.root());
    EXPECT_EQ(printed(*parsed.root()), "<p/>");
    EXPECT_EQ(child->getParentNode(), nullptr);
    EXPECT_EQ(printed(*child), "<a id=\"a\"><b id=\"b\"/></a>");
    removeChildren(*parsed.root());
    EXPECT_EQ(printed(*parsed.root()), "<p/>");
}

TEST_F(NodesTest, ANodeIsWithinItselfAndWhatIsAboveIt) {
    const ParsedXml parsed(kMixed);
    EXPECT_TRUE(isWithin(*parsed.byId("b"), *parsed.byId("b")));
    EXPECT_TRUE(isWithin(*parsed.byId("b"), *parsed.byId("a")));
    EXPECT_TRUE(isWithin(*parsed.byId("b"), parsed.document()));
    EXPECT_TRUE(isWithin(*parsed.root()->getFirstChild(), *parsed.root()));
    EXPECT_FALSE(isWithin(*parsed.byId("a"), *parsed.byId("b")));
    EXPECT_FALSE(isWithin(*parsed.byId("c"), *parsed.byId("a")));
    const ParsedXml other(kMixed);
    EXPECT_FALSE(isWithin(*parsed.byId("b"), *other.root()));
}

TEST_F(NodesTest, WhatWasTakenOutIsWithinNothingAboveIt) {
    const ParsedXml parsed(kMixed);
    const xercesc::DOMElement& taken = *parsed.byId("a");
    const xercesc::DOMElement& below = *parsed.byId("b");
    removeChildren(*parsed.root());
    EXPECT_TRUE(isWithin(below, taken));
    EXPECT_FALSE(isWithin(below, *parsed.root()));
}

}  // namespace
}  // namespace marrowpress
