#include "dom/copies.h"

#include "dom/nodes.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

using CopiesTest = XmlTest;

/// The ids from `start` to the end of the subtree of `root`.
std::string walked(DOMElement* start, const DOMElement& root) {
    std::vector<DOMElement*> elements;
    for (DOMElement* element = start; element; element = nextInSubtree(element, root)) {
        elements.push_back(element);
    }
    return idsOf(elements);
}

constexpr const char* kTree =
    "<x id='r'>0<x id='a'><x id='b'/>1<!--2--><x id='c'><x id='d'/></x></x><?pi?><x id='e'/></x>";

TEST_F(CopiesTest, ASubtreeIsWalkedInDocumentOrder) {
    const ParsedXml parsed(kTree);
    EXPECT_EQ(walked(parsed.root(), *parsed.root()), "r a b c d e");
}

TEST_F(CopiesTest, AWalkEndsAtTheEndOfItsSubtree) {
    const ParsedXml parsed(kTree);
    EXPECT_EQ(walked(parsed.byId("a"), *parsed.byId("a")), "a b c d");
    EXPECT_EQ(walked(parsed.byId("d"), *parsed.byId("a")), "d");
    EXPECT_EQ(walked(parsed.byId("e"), *parsed.byId("e")), "e");
}

TEST_F(CopiesTest, EachElementComesWithItsCounterpart) {
    const ParsedXml source(kTree);
    const ParsedXml target("<y/>");
    auto* const copy = static_cast<DOMElement*>(
        target.root()->appendChild(target.document().importNode(source.byId("a"), true)));
    std::string pairs;
    forEachCopiedElement(*source.byId("a"), *copy, [&](DOMElement& from, DOMElement& to) {
        EXPECT_EQ(from.getOwnerDocument(), &source.document());
        EXPECT_EQ(to.getOwnerDocument(), &target.document());
        pairs += attribute(from, "id") + attribute(to, "id") + " ";
    });
    EXPECT_EQ(pairs, "aa bb cc dd ");
}

TEST_F(CopiesTest, AttributesOfTheCopyMayBeChangedMeanwhile) {
    const ParsedXml parsed(kTree);
    auto* const copy = static_cast<DOMElement*>(parsed.root()->cloneNode(true));
    forEachCopiedElement(*parsed.root(), *copy, [](DOMElement& from, DOMElement& to) {
        to.setAttribute(u"id", (std::u16string(u"+") + from.getAttribute(u"id")).c_str());
    });
    EXPECT_EQ(walked(copy, *copy), "+r +a +b +c +d +e");
    EXPECT_EQ(walked(parsed.root(), *parsed.root()), "r a b c d e");
}

TEST_F(CopiesTest, CopiesAreAppendedWithAllBelowThem) {
    const ParsedXml source("<p>1<a id='a'><b id='b'/></a><!--2--><?three?><c id='c'/></p>");
    const ParsedXml target("<q>0</q>");
    appendCopies(*target.root(), childrenOf(*source.root()), {});
    EXPECT_EQ(printed(*target.root()),
              "<q>01<a id=\"a\"><b id=\"b\"/></a><!--2--><?three?><c id=\"c\"/></q>");
    EXPECT_EQ(target.byId("b")->getOwnerDocument(), &target.document());
    EXPECT_EQ(childrenOf(*source.root()).size(), 5U);
}

TEST_F(CopiesTest, CopiesMayBeOfTheTargetItself) {
    const ParsedXml parsed("<p><a/>1</p>");
    appendCopies(*parsed.root(), {parsed.root()}, {});
    EXPECT_EQ(printed(*parsed.root()), "<p><a/>1<p><a/>1</p></p>");
}

}  // namespace
}  // namespace marrowpress
