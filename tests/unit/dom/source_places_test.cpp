#include "dom/source_places.h"

#include "dom/copies.h"
#include "dom/nodes.h"
#include "support/text.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

class SourcePlacesTest : public XmlTest {
protected:
    SourcePlacesTest() { SourcePlaces::begin(); }
    ~SourcePlacesTest() override { SourcePlaces::end(); }

    SourcePlaces& places() { return *SourcePlaces::existing(); }

    /// Says that all elements of `document` stand in the file "/name", the first in line 1, the
    /// next in line 2, and so on.
    void place(const ParsedXml& document, const std::string& name) {
        const std::uint32_t file = places().fileNumber(toUtf16("/" + name));
        std::uint32_t line = 1;
        for (DOMElement* element = document.root(); element;
             element = nextInSubtree(element, *document.root())) {
            places().record(*element, {file, line, 1});
            ++line;
        }
    }

    std::string text(const SourcePlace& place) {
        const std::u16string_view path = places().filePath(place.file);
        return path.empty() ? "nowhere" : toUtf8(path.substr(1)) + ":" + std::to_string(place.line);
    }

    /// The steps, with the attribute and its value in front of each but the first.
    std::string text(const std::vector<SourceStep>& steps) {
        std::string joined;
        for (const SourceStep& step : steps) {
            joined += joined.empty() ? "" : " <- ";
            if (step.attribute) {
                joined += toUtf8(std::u16string_view(step.attribute)) + "=" +
                          toUtf8(std::u16string_view(step.target)) + " at ";
            }
            joined += text(step.place);
        }
        return joined;
    }

    std::string stepsTo(const DOMElement& element) { return text(places().stepsTo(element)); }

    /// Puts a copy of `original` behind all that is in `parent`, on account of `reference`.
    static DOMElement& copyTo(DOMElement& parent, const DOMElement& original,
                              const DOMElement* reference, bool takesTopic = false) {
        CopyCause cause = reference ? causeOf(*reference) : CopyCause();
        cause.takesTopic = takesTopic;
        appendCopies(parent, {const_cast<DOMElement*>(&original)}, cause);
        return *parent.getLastElementChild();
    }

    const ParsedXml map{"<m><r id='a' href='a.dita'/><r id='b' href='b.dita'/></m>"};
    const ParsedXml topicA{"<t><p id='p'><x id='x'/></p><q id='q' conref='b.dita#t/p'/></t>"};
    const ParsedXml topicB{"<t><p id='p'><y id='y' conref='c.dita#t/p'/></p></t>"};
    const ParsedXml topicC{"<t><p id='p'><z id='z'/></p></t>"};
    const ParsedXml output{"<d/>"};
};

TEST_F(SourcePlacesTest, ThereIsATableBetweenBeginAndEndOnly) {
    EXPECT_TRUE(SourcePlaces::existing());
    SourcePlaces::end();
    EXPECT_FALSE(SourcePlaces::existing());
    SourcePlaces::begin();
    EXPECT_TRUE(SourcePlaces::existing());
}

TEST_F(SourcePlacesTest, AFileHasOneNumber) {
    const std::uint32_t first = places().fileNumber(u"/a");
    const std::uint32_t second = places().fileNumber(u"/b");
    EXPECT_NE(first, second);
    EXPECT_EQ(places().fileNumber(u"/a"), first);
    EXPECT_EQ(places().filePath(second), u"/b");
    EXPECT_EQ(places().filePath(0), u"");
}

TEST_F(SourcePlacesTest, AnElementThatTheRunMadeStandsWhereTheOneAroundItDoes) {
    place(topicA, "a.dita");
    DOMElement& made = *topicA.document().createElement(u"made");
    EXPECT_EQ(text(places().placeOf(made)), "nowhere");
    EXPECT_EQ(stepsTo(made), "nowhere");
    topicA.byId("p")->appendChild(&made);
    EXPECT_EQ(text(places().placeOf(made)), "a.dita:2");
    EXPECT_EQ(stepsTo(made), "a.dita:2");
}

TEST_F(SourcePlacesTest, AnElementIsReachedByTheFirstReferencesToTheFiles) {
    place(map, "root.ditamap");
    place(topicA, "a.dita");
    place(topicB, "b.dita");
    EXPECT_EQ(stepsTo(*topicB.byId("y")), "b.dita:3");
    places().recordReference(u"/a.dita", *map.byId("a"));
    places().recordReference(u"/b.dita", *topicA.byId("q"));
    places().recordReference(u"/b.dita", *map.byId("b"));
    EXPECT_EQ(stepsTo(*topicB.byId("y")),
              "b.dita:3 <- conref=b.dita#t/p at a.dita:4 <- href=a.dita at root.ditamap:2");
    EXPECT_EQ(text(places().stepsTo(SourcePlace{places().fileNumber(u"/a.dita"), 7, 3})),
              "a.dita:7 <- href=a.dita at root.ditamap:2");
}

TEST_F(SourcePlacesTest, FilesThatReferToEachOtherAreToldOnce) {
    place(topicA, "a.dita");
    place(topicB, "b.dita");
    places().recordReference(u"/b.dita", *topicA.byId("q"));
    places().recordReference(u"/a.dita", *topicB.byId("y"));
    EXPECT_EQ(stepsTo(*topicA.byId("x")),
              "a.dita:3 <- conref=c.dita#t/p at b.dita:3 <- conref=b.dita#t/p at a.dita:4");
}

TEST_F(SourcePlacesTest, ACopyHasThePlacesOfItsOriginalAndTheReferenceThatBroughtIt) {
    place(map, "root.ditamap");
    place(topicA, "a.dita");
    copyTo(*output.root(), *topicA.root(), map.byId("a"));
    EXPECT_EQ(stepsTo(*output.byId("x")), "a.dita:3 <- href=a.dita at root.ditamap:2");
    EXPECT_EQ(stepsTo(*topicA.byId("x")), "a.dita:3");
}

TEST_F(SourcePlacesTest, WhatOnlyChangesItsDocumentKeepsItsWay) {
    place(map, "root.ditamap");
    DOMElement& copy = copyTo(*output.root(), *map.byId("a"), nullptr);
    EXPECT_EQ(stepsTo(copy), "root.ditamap:2");
}

TEST_F(SourcePlacesTest, ACopyOfACopyHasTheWholeWay) {
    place(map, "root.ditamap");
    place(topicA, "a.dita");
    place(topicB, "b.dita");
    place(topicC, "c.dita");
    copyTo(*output.root(), *topicA.root(), map.byId("a"));
    DOMElement& reference = *output.byId("q");
    copyTo(reference, *topicB.byId("p"), &reference);
    DOMElement& inner = *output.byId("y");
    copyTo(inner, *topicC.byId("p"), &inner);
    EXPECT_EQ(stepsTo(*output.byId("z")),
              "c.dita:3 <- conref=c.dita#t/p at b.dita:3 <- conref=b.dita#t/p at a.dita:4"
              " <- href=a.dita at root.ditamap:2");
}

TEST_F(SourcePlacesTest, ContentThatWasPulledBeforeKeepsBothWays) {
    place(map, "root.ditamap");
    place(topicA, "a.dita");
    place(topicB, "b.dita");
    place(topicC, "c.dita");
    copyTo(*topicB.byId("y"), *topicC.byId("p"), topicB.byId("y"));
    copyTo(*topicA.byId("q"), *topicB.byId("p"), topicA.byId("q"));
    const DOMElement& z = *asElement(topicA.byId("z"));
    EXPECT_EQ(stepsTo(z),
              "c.dita:3 <- conref=c.dita#t/p at b.dita:3 <- conref=b.dita#t/p at a.dita:4");
}

TEST_F(SourcePlacesTest, ACopyWithinTheOutputForgetsHowItsOriginalCameThere) {
    place(map, "root.ditamap");
    place(topicA, "a.dita");
    place(topicB, "b.dita");
    place(topicC, "c.dita");
    copyTo(*output.root(), *topicB.root(), map.byId("b"), true);
    DOMElement& inner = *output.byId("y");
    copyTo(inner, *topicC.byId("p"), &inner);
    copyTo(*output.root(), *topicA.root(), map.byId("a"), true);
    DOMElement& copy = copyTo(*output.byId("q"), *output.byId("y"), output.byId("q"));
    EXPECT_EQ(stepsTo(copy),
              "b.dita:3 <- conref=b.dita#t/p at a.dita:4"
              " <- href=a.dita at root.ditamap:2");
    EXPECT_EQ(stepsTo(*asElement(copy.getFirstElementChild()->getFirstElementChild())),
              "c.dita:3 <- conref=c.dita#t/p at b.dita:3 <- conref=b.dita#t/p at a.dita:4"
              " <- href=a.dita at root.ditamap:2");
}

TEST_F(SourcePlacesTest, TextAndCommentsAreCopiedWithoutPlaces) {
    const ParsedXml source("<t>1<!--2--><a id='a'>3</a><?pi 4?><b id='b'/></t>");
    place(source, "s.dita");
    for (const xercesc::DOMNode* const child : childrenOf(*source.root())) {
        output.root()->appendChild(importCopy(output.document(), *child, {}));
    }
    EXPECT_EQ(stepsTo(*output.byId("a")), "s.dita:2");
    EXPECT_EQ(stepsTo(*output.byId("b")), "s.dita:3");
}

TEST_F(SourcePlacesTest, AWayWithoutEndIsCut) {
    place(topicA, "a.dita");
    const DOMElement* reference = topicA.byId("q");
    for (int depth = 0; depth < 1000; ++depth) {
        reference = &copyTo(*output.root(), *topicA.byId("q"), reference);
    }
    EXPECT_EQ(places().stepsTo(*reference).size(), 200U);
}

TEST_F(SourcePlacesTest, TheCauseIsTheFirstReferenceThatAnElementHas) {
    struct {
        const char* attributes;
        const char* expected;
    } const cases[] = {
        {"conref='c' href='h' conkeyref='ck' keyref='k'", "conref=c"},
        {"href='h' conkeyref='ck' keyref='k'", "href=h"},
        {"conkeyref='ck' keyref='k'", "conkeyref=ck"},
        {"keyref='k'", "keyref=k"},
        {"conref='' keyref='k'", "keyref=k"},
        {"", "href="},
    };
    for (const auto& [attributes, expected] : cases) {
        const ParsedXml element(std::string("<x ") + attributes + "/>");
        const CopyCause cause = causeOf(*element.root());
        EXPECT_EQ(cause.reference, element.root());
        EXPECT_EQ(toUtf8(std::u16string_view(cause.attribute)) + "=" + toUtf8(cause.target),
                  expected);
    }
}

}  // namespace
}  // namespace marrowpress
