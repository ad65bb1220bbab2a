#include "keys/pulled_fragments.h"

#include <xercesc/dom/DOMException.hpp>

#include "support/publish_exception.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

class PulledFragmentsTest : public XmlTest {
protected:
    void pull(const ParsedXml& map, std::string_view reference, const ParsedXml& target,
              std::u16string_view id) {
        fragments.pull(*map.byId(reference), target.document(), id);
    }

    PulledFragments fragments;
};

TEST_F(PulledFragmentsTest, PutsACopyBehindTheReference) {
    const ParsedXml map("<map><a id='r'><b/></a> <c/></map>");
    const ParsedXml target("<map><x id='f' href='h'>t<!--c--><y id='z'/></x></map>");
    pull(map, "r", target, u"f");
    EXPECT_EQ(printed(*map.root()),
              R"(<map><a id="r"><b/></a> <x href="h" id="f">t<!--c--><y id="z"/></x><c/></map>)");
    EXPECT_EQ(printed(*target.root()), R"(<map><x href="h" id="f">t<!--c--><y id="z"/></x></map>)");
}

TEST_F(PulledFragmentsTest, AtTheEndOfTheSiblingsTheCopyComesLast) {
    const ParsedXml map("<map><g><a id='r'/>text</g><c/></map>");
    pull(map, "r", ParsedXml("<map id='f'/>"), u"f");
    EXPECT_EQ(printed(*map.root()), R"(<map><g><a id="r"/>text<map id="f"/></g><c/></map>)");
}

TEST_F(PulledFragmentsTest, TakesTheFirstElementWithTheExactId) {
    const ParsedXml map("<map><a id='r'/></map>");
    const ParsedXml target("<map><x id='F'/><g><x id='f' n='1'/></g><x id='f' n='2'/></map>");
    pull(map, "r", target, u"f");
    EXPECT_EQ(printed(*map.root()), R"(<map><a id="r"/><x id="f" n="1"/></map>)");
}

TEST_F(PulledFragmentsTest, WithoutSuchAnElementNothingHappens) {
    const ParsedXml map("<map><a id='r'/></map>");
    const ParsedXml target("<map><x id='f'/></map>");
    pull(map, "r", target, u"g");
    EXPECT_EQ(printed(*map.root()), R"(<map><a id="r"/></map>)");
    EXPECT_TRUE(host.console().empty());
}

TEST_F(PulledFragmentsTest, BesideTheDocumentElementThereIsNoRoom) {
    const ParsedXml map("<map id='r'/>");
    EXPECT_THROW(pull(map, "r", ParsedXml("<map><x id='f'/></map>"), u"f"), xercesc::DOMException);
    EXPECT_EQ(printed(map.document()), R"(<map id="r"/>)");
    pull(map, "r", ParsedXml("<map><x id='f'/></map>"), u"g");
    EXPECT_EQ(printed(map.document()), R"(<map id="r"/>)");
}

TEST_F(PulledFragmentsTest, AMapThatWouldNestTooDeeplyEndsTheRun) {
    const ParsedXml map("<map>" + nestedElements(3000, "<a id='r'/>") + "</map>");
    const ParsedXml target("<map><x id='f'>" + nestedElements(3000) + "</x><x id='g'/></map>");
    EXPECT_THROW(pull(map, "r", target, u"f"), PublishException);
    pull(map, "r", target, u"g");
    EXPECT_NE(printed(*map.root()).find(R"(<x id="g"/>)"), std::string::npos);
}

TEST_F(PulledFragmentsTest, AReferenceInTheFragmentItselfGetsNone) {
    const ParsedXml map("<map><x id='f'><g><a id='r'/></g></x><b id='s'/></map>");
    pull(map, "r", map, u"f");
    EXPECT_EQ(printed(*map.root()), R"(<map><x id="f"><g><a id="r"/></g></x><b id="s"/></map>)");
    // Beside it there is nothing endless.
    pull(map, "s", map, u"f");
    EXPECT_EQ(printed(*map.root()),
              R"(<map><x id="f"><g><a id="r"/></g></x><b id="s"/><x id="f"><g><a id="r"/></g></x>)"
              R"(</map>)");
}

TEST_F(PulledFragmentsTest, AReferenceInACopyOfTheFragmentGetsNone) {
    const ParsedXml map("<map><a id='r'/></map>");
    const ParsedXml target("<map><x id='f'><a id='inner'/></x></map>");
    pull(map, "r", target, u"f");
    pull(map, "inner", target, u"f");
    EXPECT_EQ(printed(*map.root()), R"(<map><a id="r"/><x id="f"><a id="inner"/></x></map>)");
}

TEST_F(PulledFragmentsTest, AnotherFragmentOrAnotherMapIsNoCopy) {
    const ParsedXml map("<map><a id='r'/></map>");
    const ParsedXml target("<map><x id='f'><a id='inner'/></x><x id='g'/></map>");
    const ParsedXml other("<map><y id='f'/></map>");
    pull(map, "r", target, u"f");
    pull(map, "inner", target, u"g");
    pull(map, "inner", other, u"f");
    // Each stands right behind the reference.
    EXPECT_EQ(printed(*map.root()),
              R"(<map><a id="r"/><x id="f"><a id="inner"/><y id="f"/><x id="g"/></x></map>)");
}

}  // namespace
}  // namespace marrowpress
