#include "references/direct_references.h"

#include <array>

#include "support/text.h"
#include "tests/support/texts.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

constexpr std::string_view kFirstId = kGeneratedIds[0];
constexpr std::string_view kSecondId = kGeneratedIds[1];
constexpr std::string_view kThirdId = kGeneratedIds[2];

constexpr std::array<std::string_view, 4> kAttributes{"href", "conref", "conrefend", "xtrf"};

std::u16string locationOf(std::string_view id) {
    return u"#" + toUtf16(id);
}

/// A text in which X stands for the first id.
std::string withFirstId(std::string text) {
    return replacedAll(std::move(text), "X", kFirstId);
}

class DirectReferencesTest : public XmlTest {
protected:
    void normalize(const ParsedXml& parsed) {
        normalizer_.normalizeSubtree(parsed.root(), parsed.document(), topics_);
    }

    void rewrite(const ParsedXml& parsed) { updater_.rewriteReferences(parsed.root(), topics_); }

    ReferenceNormalizer normalizer_;
    ReferenceUpdater updater_;
    TopicIdMap topics_;
};

using DirectRefAttrHandlerTest = XmlTest;

TEST_F(DirectRefAttrHandlerTest, EachBitHasTheHandlerOfItsAttribute) {
    constexpr std::array<std::uint32_t, 4> kBits{1, 2, 4, 8};
    for (std::size_t index = 0; index < kBits.size(); ++index) {
        const ParsedXml parsed(
            "<x href='of href' conref='of conref' conrefend='of conrefend' "
            "xtrf='of xtrf'/>");
        const DirectRefAttrHandler& handler = directRefAttrHandler(kBits[index]);
        const std::string name(kAttributes[index]);
        EXPECT_EQ(handler.type(), kBits[index]);
        EXPECT_EQ(handler.getRefValue(*parsed.root()), u"of " + toUtf16(name));
        handler.setRefValue(*parsed.root(), u"<&\" \u00E4");
        for (const std::string_view other : kAttributes) {
            EXPECT_EQ(attribute(*parsed.root(), other),
                      other == name ? "<&\" \xC3\xA4" : "of " + std::string(other));
        }
    }
}

TEST_F(DirectRefAttrHandlerTest, ReadsAMissingAttributeAsEmptyAndMakesItWhenSet) {
    const ParsedXml parsed("<x/>");
    EXPECT_EQ(directRefAttrHandler(4).getRefValue(*parsed.root()), u"");
    directRefAttrHandler(4).setRefValue(*parsed.root(), u"v");
    EXPECT_EQ(printed(*parsed.root()), R"(<x conrefend="v"/>)");
}

TEST(DirectRefAttrHandlerLifeTest, OutlivesTheSession) {
    const RecordingHost host;
    std::array<const DirectRefAttrHandler*, 2> seen{};
    for (const DirectRefAttrHandler*& handler : seen) {
        const XmlSession session;
        handler = &directRefAttrHandler(8);
    }
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_EQ(seen[0]->type(), 8U);
}

struct RewriteCase {
    const char* name;
    const char* written;
    const char* normalized;
    const char* rewritten;  // with X for the new id
};

/// In the file /p/a.dita with the topic t.
constexpr RewriteCase kRewriteCases[] = {
    {"ElementInTopic", "a.dita#t/e", "/p/a.dita#t/e", "#X/e"},
    {"Topic", "a.dita#t", "/p/a.dita#t", "#X"},
    {"ElementInSameFile", "#t/e", "/p/a.dita#t/e", "#X/e"},
    {"TopicInSameFile", "#t", "/p/a.dita#t", "#X"},
    {"File", "a.dita", "/p/a.dita", "#X"},
    {"ElementInThisTopic", "a.dita#./e", "/p/a.dita#./e", "#X/e"},
    {"ElementInThisTopicOfSameFile", "#./e", "/p/a.dita#./e", "#X/e"},
    {"ThisTopic", "#.", "/p/a.dita#.", "#X"},
    {"UnknownTopic", "a.dita#u", "/p/a.dita#u", "/p/a.dita#u"},
    {"ElementInUnknownTopic", "a.dita#u/e", "/p/a.dita#u/e", "/p/a.dita#u/e"},
    {"TopicInOtherCase", "a.dita#T", "/p/a.dita#T", "/p/a.dita#T"},
    {"ElementPathGoesOn", "a.dita#t/e/f", "/p/a.dita#t/e/f", "#X/e/f"},
    {"EmptyElementId", "a.dita#t/", "/p/a.dita#t/", "#X"},
    {"EmptyFragment", "a.dita#", "/p/a.dita#", "#X"},
    {"EmptyFragmentOfSameFile", "#", "/p/a.dita#", "#X"},
    {"EmptyTopicId", "a.dita#/e", "/p/a.dita#/e", "#X/e"},
    {"DetourInThePath", "sub/../a.dita#t", "/p/a.dita#t", "#X"},
    {"AbsolutePath", "/p/a.dita#t/e", "/p/a.dita#t/e", "#X/e"},
    {"AbsolutePathWithDetour", "/p/./a.dita#t", "/p/./a.dita#t", "/p/./a.dita#t"},
    {"FileUrl", "file:///p/a.dita#t", "/p/a.dita#t", "#X"},
    {"EscapedPath", "./%61.dita#t", "/p/a.dita#t", "#X"},
    {"EscapesInTheFragmentStay", "sub/%62.dita#%74/%65", "/p/sub/b.dita#%74/%65",
     "/p/sub/b.dita#%74/%65"},
    {"OtherFile", "../b.dita#t/e", "/b.dita#t/e", "/b.dita#t/e"},
    {"TwoHashes", "c#d#t/e", "/p/c#d#t/e", "/p/c#d#t/e"},
    {"Http", "http://host/a%20b?q=1#t/e", "http://host/a%20b?q=1#t/e", "http://host/a%20b?q=1#t/e"},
    {"Https", "https://host/p/a.dita", "https://host/p/a.dita", "https://host/p/a.dita"},
    {"Mailto", "mailto:a%20b@c", "mailto:a%20b@c", "mailto:a%20b@c"},
    {"HttpInUpperCase", "HTTP://host/a", "/p/HTTP:/host/a", "/p/HTTP:/host/a"},
    {"UseConrefTarget", "-dita-use-conref-target", "/p/-dita-use-conref-target",
     "/p/-dita-use-conref-target"},
    {"BareHostIsAPath", "www.host", "/p/www.host", "/p/www.host"},
    {"Blank", " ", "/p/ ", "/p/ "},
};

class RewriteTest : public DirectReferencesTest, public testing::WithParamInterface<RewriteCase> {};

TEST_P(RewriteTest, NormalisesAndRewritesInEachAttribute) {
    ParsedXml parsed("<topic id='t'><p id='e'/><xref/></topic>", u"file:///p/a.dita");
    DOMElement& xref = *parsed.root()->getLastElementChild();
    for (const std::string_view name : kAttributes) {
        xref.setAttribute(toUtf16(name).c_str(),
                          toUtf16(std::string_view(GetParam().written)).c_str());
    }
    normalize(parsed);
    for (const std::string_view name : kAttributes) {
        EXPECT_EQ(attribute(xref, name), GetParam().normalized) << name;
    }
    rewrite(parsed);
    for (const std::string_view name : kAttributes) {
        EXPECT_EQ(attribute(xref, name), withFirstId(GetParam().rewritten)) << name;
    }
    EXPECT_TRUE(host.console().empty());
}

INSTANTIATE_TEST_SUITE_P(, RewriteTest, testing::ValuesIn(kRewriteCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

struct AbsoluteCase {
    std::u16string_view value;
    std::u16string_view absolute;
};

constexpr AbsoluteCase kAbsoluteCases[] = {
    {u"b.dita", u"/p/b.dita"},
    {u"b.dita#t/e", u"/p/b.dita#t/e"},
    {u"#t/e", u"/p/a.dita#t/e"},
    {u"#", u"/p/a.dita#"},
    {u"b.dita#", u"/p/b.dita#"},
    {u"", u"/p/a.dita"},
    {u"b#c#d", u"/p/b#c#d"},
    {u"sub/b%20c#t%20u", u"/p/sub/b c#t%20u"},
    {u"http://host/x#y", u"http://host/x#y"},
    {u"mailto:a@b", u"mailto:a@b"},
    {u"C:\\x\\b.dita#t", u"C:\\x\\b.dita#t"},
};

TEST_F(DirectReferencesTest, MakesThePathPartAbsoluteAndKeepsTheRest) {
    const ParsedXml parsed("<topic/>", u"file:///p/a.dita");
    for (const AbsoluteCase& example : kAbsoluteCases) {
        EXPECT_EQ(makeAbsoluteHref(example.value, parsed.document()), example.absolute)
            << toUtf8(example.value);
    }
}

using ReferenceNormalizerTest = DirectReferencesTest;

TEST_F(ReferenceNormalizerTest, GivesIdsAndMakesDirectAndMediaReferencesAbsolute) {
    const ParsedXml parsed(
        "<topic id='t'><title id='h'>T</title><xref href='b.dita#u/e' conref='#t/h'/>"
        "<object data='m.swf'><param name='src' value='v.mp4'/></object></topic>",
        u"file:///p/a.dita");
    normalize(parsed);
    EXPECT_EQ(printed(*parsed.root()),
              "<topic id=\"" + std::string(kFirstId) +
                  "\"><title id=\"h\">T</title>"
                  "<xref conref=\"/p/a.dita#t/h\" href=\"/p/b.dita#u/e\"/>"
                  "<object data=\"/p/m.swf\"><param name=\"src\" value=\"/p/v.mp4\"/></object>"
                  "</topic>");
    EXPECT_EQ(topics_.byReference(), (TopicIdMap::Entries{{u"/p/a.dita#t", locationOf(kFirstId)}}));
    EXPECT_EQ(topics_.byFile(), (TopicIdMap::Entries{{u"/p/a.dita", locationOf(kFirstId)}}));
}

TEST_F(ReferenceNormalizerTest, AllReferencesOfOneElementBecomeAbsolute) {
    const ParsedXml parsed("<object href='h' conref='c' conrefend='ce' xtrf='x' data='d'/>",
                           u"file:///p/a.dita");
    normalize(parsed);
    EXPECT_EQ(printed(*parsed.root()),
              R"(<object conref="/p/c" conrefend="/p/ce" data="/p/d" href="/p/h" xtrf="/p/x"/>)");
}

TEST_F(ReferenceNormalizerTest, OnlyTopicsWithAnIdGetANewOne) {
    const ParsedXml parsed(
        "<topic><title id='same'/><body id='b'/><topic id=''/><concept id='same'/>"
        "<x class='- topic/topic x/x ' id='x'/><topic class='- topic/ph ' id='ph'/>"
        "<dita id='d'/></topic>",
        u"file:///p/a.dita");
    normalize(parsed);
    EXPECT_EQ(printed(*parsed.root()),
              "<topic><title id=\"same\"/><body id=\"b\"/><topic id=\"\"/><concept id=\"" +
                  std::string(kFirstId) + "\"/><x class=\"- topic/topic x/x \" id=\"" +
                  std::string(kSecondId) +
                  "\"/><topic class=\"- topic/ph \" id=\"ph\"/><dita id=\"d\"/></topic>");
    EXPECT_EQ(topics_.byReference(),
              (TopicIdMap::Entries{{u"/p/a.dita#same", locationOf(kFirstId)},
                                   {u"/p/a.dita#x", locationOf(kSecondId)}}));
}

TEST_F(ReferenceNormalizerTest, NestedTopicsGetIdsInDocumentOrder) {
    const ParsedXml parsed(
        "<topic id='t'><body id='b'/><topic id='u'><topic id='v'/></topic></topic>",
        u"file:///p/a.dita");
    normalize(parsed);
    EXPECT_EQ(topics_.byReference(), (TopicIdMap::Entries{{u"/p/a.dita#t", locationOf(kFirstId)},
                                                          {u"/p/a.dita#u", locationOf(kSecondId)},
                                                          {u"/p/a.dita#v", locationOf(kThirdId)}}));
    EXPECT_EQ(topics_.byFile(), (TopicIdMap::Entries{{u"/p/a.dita", locationOf(kFirstId)}}));
}

TEST_F(ReferenceNormalizerTest, AFileIsItsFirstTopicWithAnId) {
    const ParsedXml parsed(
        "<dita><topic><topic id='t'/></topic><topic id='u'/><xref href='a.dita'/></dita>",
        u"file:///p/a.dita");
    normalize(parsed);
    rewrite(parsed);
    EXPECT_EQ(attribute(*parsed.root()->getLastElementChild(), "href"),
              "#" + std::string(kFirstId));
}

TEST_F(ReferenceNormalizerTest, NormalisesTheSubtreeAlone) {
    const ParsedXml parsed("<dita href='r'><topic id='t' href='x'/><topic id='u' href='y'/></dita>",
                           u"file:///p/a.dita");
    normalizer_.normalizeSubtree(parsed.byId("t"), parsed.document(), topics_);
    EXPECT_EQ(printed(*parsed.root()), "<dita href=\"r\"><topic href=\"/p/x\" id=\"" +
                                           std::string(kFirstId) +
                                           "\"/><topic href=\"y\" id=\"u\"/></dita>");
}

TEST_F(ReferenceNormalizerTest, TheCallerNamesTheBase) {
    const ParsedXml source("<topic id='t'><xref href='b.dita'/><xref href='#t'/></topic>",
                           u"file:///p/sub/../q/a.dita");
    const ParsedXml target("<dita/>", u"file:///out/o.dita");
    auto* const imported =
        dynamic_cast<DOMElement*>(target.document().importNode(source.root(), true));
    ASSERT_NE(imported, nullptr);
    target.root()->appendChild(imported);
    normalizer_.normalizeSubtree(imported, source.document(), topics_);
    EXPECT_EQ(printed(*target.root()),
              "<dita><topic id=\"" + std::string(kFirstId) +
                  "\"><xref href=\"/p/q/b.dita\"/><xref href=\"/p/q/a.dita#t\"/></topic></dita>");
    EXPECT_EQ(topics_.find(u"/p/q/a.dita#t"), locationOf(kFirstId));
    EXPECT_EQ(attribute(*source.root(), "id"), "t");
}

TEST_F(ReferenceNormalizerTest, TheSameFileTwiceLeadsToTheFirstCopy) {
    const char* const kXml = "<topic id='t'><xref href='#t'/><xref href='a.dita'/></topic>";
    const ParsedXml first(kXml, u"file:///p/a.dita");
    const ParsedXml second(kXml, u"file:///p/a.dita");
    normalize(first);
    normalize(second);
    EXPECT_EQ(attribute(*first.root(), "id"), kFirstId);
    EXPECT_EQ(attribute(*second.root(), "id"), kSecondId);
    EXPECT_EQ(topics_.byReference(), (TopicIdMap::Entries{{u"/p/a.dita#t", locationOf(kFirstId)}}));
    for (const ParsedXml* parsed : {&first, &second}) {
        rewrite(*parsed);
        EXPECT_EQ(attribute(*parsed->root()->getFirstElementChild(), "href"),
                  "#" + std::string(kFirstId));
        EXPECT_EQ(attribute(*parsed->root()->getLastElementChild(), "href"),
                  "#" + std::string(kFirstId));
    }
}

TEST_F(ReferenceNormalizerTest, EqualIdsInTwoFilesStayApart) {
    const ParsedXml first("<topic id='t'><p id='e'/><xref href='b.dita#t/e'/></topic>",
                          u"file:///p/a.dita");
    const ParsedXml second("<topic id='t'><p id='e'/><xref href='a.dita#t/e'/></topic>",
                           u"file:///p/b.dita");
    normalize(first);
    normalize(second);
    rewrite(first);
    rewrite(second);
    EXPECT_EQ(attribute(*first.root()->getLastElementChild(), "href"),
              "#" + std::string(kSecondId) + "/e");
    EXPECT_EQ(attribute(*second.root()->getLastElementChild(), "href"),
              "#" + std::string(kFirstId) + "/e");
    EXPECT_EQ(attribute(*first.root()->getFirstElementChild(), "id"), "e");
    EXPECT_EQ(attribute(*second.root()->getFirstElementChild(), "id"), "e");
}

TEST_F(ReferenceNormalizerTest, ScopeAndFormatAreNotLookedAt) {
    const ParsedXml parsed("<xref scope='external' format='html' href='b.html'/>",
                           u"file:///p/a.dita");
    normalize(parsed);
    EXPECT_EQ(attribute(*parsed.root(), "href"), "/p/b.html");
}

TEST_F(ReferenceNormalizerTest, EmptyAndMissingReferencesStayAsTheyAre) {
    const char* const kXml = R"(<x conref="" href=""><y/></x>)";
    const ParsedXml parsed(kXml, u"file:///p/a.dita");
    normalize(parsed);
    rewrite(parsed);
    EXPECT_EQ(printed(*parsed.root()), kXml);
}

TEST_F(ReferenceNormalizerTest, AMissingFileIsNoFault) {
    const ParsedXml parsed("<xref href='none.dita'/>", u"file:///p/a.dita");
    normalize(parsed);
    EXPECT_EQ(attribute(*parsed.root(), "href"), "/p/none.dita");
    EXPECT_TRUE(host.console().empty());
}

TEST_F(ReferenceNormalizerTest, ADocumentWithoutTopicIdsLeavesNoEntry) {
    const ParsedXml parsed("<topic><p id='e'/><xref href='a.dita'/><xref href='#e'/></topic>",
                           u"file:///p/a.dita");
    normalize(parsed);
    EXPECT_TRUE(topics_.byReference().empty());
    EXPECT_TRUE(topics_.byFile().empty());
    rewrite(parsed);
    EXPECT_EQ(printed(*parsed.root()),
              R"(<topic><p id="e"/><xref href="/p/a.dita"/><xref href="/p/a.dita#e"/></topic>)");
}

TEST_F(ReferenceNormalizerTest, NullRootChangesNothing) {
    const ParsedXml parsed("<topic id='t' href='b'/>", u"file:///p/a.dita");
    normalizer_.normalizeSubtree(nullptr, parsed.document(), topics_);
    updater_.rewriteReferences(nullptr, topics_);
    EXPECT_TRUE(topics_.byReference().empty());
    EXPECT_EQ(printed(*parsed.root()), R"(<topic href="b" id="t"/>)");
}

TEST_F(ReferenceNormalizerTest, EachNormaliserDrawsFromOneSequence) {
    const ParsedXml first("<topic id='t'/>", u"file:///p/a.dita");
    const ParsedXml second("<topic id='t'/>", u"file:///p/b.dita");
    ReferenceNormalizer().normalizeSubtree(first.root(), first.document(), topics_);
    ReferenceNormalizer().normalizeSubtree(second.root(), second.document(), topics_);
    EXPECT_EQ(attribute(*first.root(), "id"), kFirstId);
    EXPECT_EQ(attribute(*second.root(), "id"), kSecondId);
}

using ReferenceUpdaterTest = DirectReferencesTest;

TEST_F(ReferenceUpdaterTest, RewritesEveryAttributeOfAnElementByItself) {
    topics_.add(u"/p/a.dita#t", u"#A");
    topics_.add(u"/p/b.dita#t", u"#B");
    const ParsedXml parsed(
        "<x href='/p/a.dita#t' conref='/p/b.dita#t/e' conrefend='/p/c.dita#t' xtrf='/p/b.dita'/>");
    rewrite(parsed);
    EXPECT_EQ(printed(*parsed.root()),
              R"(<x conref="#B/e" conrefend="/p/c.dita#t" href="#A" xtrf="#B"/>)");
}

TEST_F(ReferenceUpdaterTest, RewritesTheWholeSubtreeAndNothingElse) {
    topics_.add(u"/p/a.dita#t", u"#A");
    const ParsedXml parsed(
        "<x href='/p/a.dita'><y id='y' href='/p/a.dita'><z><w href='/p/a.dita'/></z></y>"
        "<y href='/p/a.dita'/></x>");
    updater_.rewriteReferences(parsed.byId("y"), topics_);
    EXPECT_EQ(printed(*parsed.root()),
              R"(<x href="/p/a.dita"><y href="#A" id="y"><z><w href="#A"/></z></y>)"
              R"(<y href="/p/a.dita"/></x>)");
}

TEST_F(ReferenceUpdaterTest, TakesTheFileNameOfAMergedMap) {
    TopicIdMap component;
    component.add(u"/p/a.dita#t", u"#A");
    topics_.mergeWithPrefix(component, u"one.qs");
    const ParsedXml parsed("<x href='/p/a.dita#t/e' conref='/p/a.dita#t' xtrf='/p/a.dita#./e'/>");
    rewrite(parsed);
    EXPECT_EQ(printed(*parsed.root()),
              R"(<x conref="one.qs#A" href="one.qs#A/e" xtrf="one.qs#A/e"/>)");
}

TEST_F(ReferenceUpdaterTest, MediaReferencesAndIdsAreNotRewritten) {
    topics_.add(u"/p/a.dita#t", u"#A");
    const char* const kXml =
        R"(<object data="/p/a.dita#t" id="t"><param name="src" value="/p/a.dita"/></object>)";
    const ParsedXml parsed(kXml);
    rewrite(parsed);
    EXPECT_EQ(printed(*parsed.root()), kXml);
}

TEST_F(ReferenceUpdaterTest, WhatIsNotAbsoluteIsNotKnown) {
    topics_.add(u"/p/a.dita#t", u"#A");
    const ParsedXml parsed(R"(<x href="a.dita#t" conref="#t" xtrf="#A"/>)", u"file:///p/a.dita");
    rewrite(parsed);
    EXPECT_EQ(printed(*parsed.root()), R"(<x conref="#t" href="a.dita#t" xtrf="#A"/>)");
}

}  // namespace
}  // namespace marrowpress
