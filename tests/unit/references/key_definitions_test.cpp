#include "references/key_definitions.h"

#include "support/publish_exception.h"
#include "tests/unit/references/key_samples.h"
#include "xml/grammar_parser_cache.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;

TEST(KeyNameTest, EndsAtTheFirstSlash) {
    EXPECT_EQ(keyNameOf(u"k"), u"k");
    EXPECT_EQ(keyNameOf(u"k/e"), u"k");
    EXPECT_EQ(keyNameOf(u"k/e/f"), u"k");
    EXPECT_EQ(keyNameOf(u"/e"), u"");
    EXPECT_EQ(keyNameOf(u""), u"");
    EXPECT_EQ(keyNameOf(u" k #/e"), u" k #");
}

class KeyDefinitionsTest : public KeySampleTest {
protected:
    /// `element` has the id "e"; "k" is what the definition with "keys" k gives it.
    std::string applied(DOMDocument& document, const DOMElement* definition) {
        DOMElement& element = byId(document, "e");
        applyKeyDefinition(element, definition,
                           GrammarParserCache::instance().parserForDocument(document));
        return shown(element);
    }

    std::string appliedTo(std::string_view element, std::string_view definition) {
        KeySpace keySpace = keySpaceOf(definition);
        return applied(loadSample("a.dita", "<topic>" + std::string(element) + "</topic>"),
                       definitionOf(keySpace, u"k"));
    }

    const ParsedXml referrer{"<xref/>"};

    std::string hrefFor(std::u16string_view reference, std::string_view href) {
        return neutral(
            toUtf8(effectiveKeyHref(reference, toUtf16(inFolder(href)), *referrer.root())));
    }
};

TEST_F(KeyDefinitionsTest, IsFoundByItsExactNameAlone) {
    KeySpace keySpace = keySpaceOf(
        "<keydef keys='A' id='1'/><keydef keys='a' id='2'/><keydef keys='a.b'><keydef "
        "keys='inner' id='i'/></keydef>");
    EXPECT_EQ(definition(keySpace, "A"), R"(<keydef id="1" keys="A"/>)");
    EXPECT_EQ(definition(keySpace, "a"), R"(<keydef id="2" keys="a"/>)");
    for (const char* const missing : {"", " a", "a ", "A.B", "inner", "1"}) {
        EXPECT_EQ(definition(keySpace, missing), "(none)") << missing;
    }
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeyDefinitionsTest, OneThatIsMissingIsMessage105WithItsName) {
    EXPECT_EQ(resolveKeyHref(keySpaceOf(""), u"gr\u00F6\u00DFe", *referrer.root()), u"");
    EXPECT_EQ(told(), Lines({keyNotFound("gr\xC3\xB6\xC3\x9F"
                                         "e")}));
}

struct HrefCase {
    const char* name;
    const char16_t* reference;
    const char* definitionHref;
    const char* effective;
    const char* unreadable;  // the path in message 106; null for none
};

constexpr HrefCase kHrefCases[] = {
    {"NoElementPart", u"k", "$F/t.dita", "$F/t.dita", nullptr},
    {"NoElementPartWithFragment", u"k", "$F/t.dita#t", "$F/t.dita#t", nullptr},
    {"NoElementPartAndNoHref", u"k", "", "", nullptr},
    {"NoElementPartAndNoFile", u"k", "$F/none.dita", "$F/none.dita", nullptr},
    {"FragmentNeedsNoFile", u"k/e", "$F/none.dita#t", "$F/none.dita#t/e", nullptr},
    {"FragmentOfAMap", u"k/e", "$F/m.ditamap#x", "$F/m.ditamap#x/e", nullptr},
    {"EmptyFragment", u"k/e", "$F/t.dita#", "$F/t.dita#/e", nullptr},
    {"FragmentAndLongElementPart", u"k/e/f", "$F/t.dita#t", "$F/t.dita#t/e/f", nullptr},
    {"FragmentAndEmptyElementPart", u"k/", "$F/t.dita#t", "$F/t.dita#t/", nullptr},
    {"Topic", u"k/e", "$F/t.dita", "$F/t.dita#./e", nullptr},
    {"TopicAndLongElementPart", u"k/e/f", "$F/t.dita", "$F/t.dita#./e/f", nullptr},
    {"TopicAndEmptyElementPart", u"k/", "$F/t.dita", "$F/t.dita#./", nullptr},
    {"Map", u"k/e", "$F/m.ditamap", "$F/m.ditamap#e", nullptr},
    {"MapAndLongElementPart", u"k/e/f", "$F/m.ditamap", "$F/m.ditamap#e/f", nullptr},
    {"MapAndEmptyElementPart", u"k/", "$F/m.ditamap", "$F/m.ditamap#", nullptr},
    {"MapByItsElementAndNotItsName", u"k/e", "$F/m.xml", "$F/m.xml#e", nullptr},
    {"OtherXml", u"k/e", "$F/o.xml", "$F/o.xml#./e", nullptr},
    {"MissingFile", u"k/e", "$F/none.dita", "$F/none.dita#./e", "$F/none.dita"},
    {"MissingMap", u"k/e", "$F/none.ditamap", "$F/none.ditamap#./e", "$F/none.ditamap"},
    {"BrokenMap", u"k/e", "$F/broken.ditamap", "$F/broken.ditamap#./e", "$F/broken.ditamap"},
    {"NoHref", u"k/e", "", "#./e", ""},
};

class EffectiveKeyHrefTest : public KeyDefinitionsTest,
                             public testing::WithParamInterface<HrefCase> {};

TEST_P(EffectiveKeyHrefTest, PutsTheElementPartWhereTheFileWantsIt) {
    writePlain("t.dita", "<topic id='t'/>");
    writePlain("m.ditamap", "<map/>");
    writePlain("m.xml", "<bookmap/>");
    writePlain("o.xml", "<other/>");
    writePlain("broken.ditamap", "<map>");
    EXPECT_EQ(hrefFor(GetParam().reference, GetParam().definitionHref), GetParam().effective);
    EXPECT_EQ(told(), GetParam().unreadable ? Lines({cannotRead(GetParam().unreadable)}) : Lines());
}

INSTANTIATE_TEST_SUITE_P(, EffectiveKeyHrefTest, testing::ValuesIn(kHrefCases),
                         [](const auto& example) { return example.param.name; });

struct ResolveCase {
    const char* name;
    const char16_t* reference;
    const char* href;
    std::vector<std::string> told;
};

class ResolveKeyHrefTest : public KeyDefinitionsTest,
                           public testing::WithParamInterface<ResolveCase> {};

TEST_P(ResolveKeyHrefTest, GivesTheHrefOrNothing) {
    writePlain("t.dita", "<topic id='t'/>");
    KeySpace keySpace = keySpaceOf("<keydef keys='k' href='$F/t.dita'/><keydef keys='empty'/>");
    EXPECT_EQ(neutral(toUtf8(resolveKeyHref(keySpace, GetParam().reference, *referrer.root()))),
              GetParam().href);
    EXPECT_EQ(told(), GetParam().told);
}

INSTANTIATE_TEST_SUITE_P(
    , ResolveKeyHrefTest,
    testing::Values(ResolveCase{"Key", u"k", "$F/t.dita", {}},
                    ResolveCase{"KeyAndElement", u"k/e", "$F/t.dita#./e", {}},
                    ResolveCase{"NoValue", u"", "", {}}, ResolveCase{"NoKeyName", u"/e", "", {}},
                    ResolveCase{"Undefined", u"u", "", {keyNotFound("u")}},
                    ResolveCase{"UndefinedIsNamedWithoutElement", u"u/e", "", {keyNotFound("u")}},
                    ResolveCase{"OtherCase", u"K", "", {keyNotFound("K")}},
                    ResolveCase{"BlankCounts", u" k", "", {keyNotFound(" k")}},
                    ResolveCase{"NoHref", u"empty", "", {}},
                    ResolveCase{"NoHrefButElement", u"empty/e", "#./e", {cannotRead("")}}),
    [](const auto& example) { return example.param.name; });

struct ApplyCase {
    const char* name;
    const char* element;
    const char* definition;
    const char* applied;
};

constexpr ApplyCase kApplyCases[] = {
    {"GivesHrefAndContent", "<xref id='e' keyref='k'/>",
     "<keydef keys='k' href='/t.dita'><topicmeta><linktext>L</linktext></topicmeta></keydef>",
     R"(<xref href="/t.dita" id="e">L</xref>)"},
    {"OwnContentStays", "<xref id='e' keyref='k'>own</xref>",
     "<keydef keys='k' href='/t.dita'><topicmeta><linktext>L</linktext></topicmeta></keydef>",
     R"(<xref href="/t.dita" id="e">own</xref>)"},
    {"CommentIsOwnContent", "<xref id='e' keyref='k'><!--c--></xref>",
     "<keydef keys='k' href='/t.dita'><topicmeta><linktext>L</linktext></topicmeta></keydef>",
     R"(<xref href="/t.dita" id="e"><!--c--></xref>)"},
    {"BlankIsOwnContent", "<xref id='e' keyref='k'> </xref>",
     "<keydef keys='k' href='/t.dita'><topicmeta><linktext>L</linktext></topicmeta></keydef>",
     R"(<xref href="/t.dita" id="e"> </xref>)"},
    {"InstructionIsOwnContent", "<xref id='e' keyref='k'><?i d?></xref>",
     "<keydef keys='k' href='/t.dita'><topicmeta><linktext>L</linktext></topicmeta></keydef>",
     R"(<xref href="/t.dita" id="e"><?i d?></xref>)"},
    {"NoTopicmeta", "<xref id='e' keyref='k'/>", "<keydef keys='k' href='/t.dita'/>",
     R"(<xref href="/t.dita" id="e"/>)"},
    {"HrefIsReplaced", "<xref id='e' keyref='k' href='/old.dita'/>",
     "<keydef keys='k' href='/t.dita'/>", R"(<xref href="/t.dita" id="e"/>)"},
    {"HrefStaysWhenThereIsNone", "<xref id='e' keyref='k' href='/old.dita'/>",
     "<keydef keys='k'><topicmeta><linktext>L</linktext></topicmeta></keydef>",
     R"(<xref href="/old.dita" id="e">L</xref>)"},
    {"HrefStaysWhenItIsEmpty", "<xref id='e' keyref='k' href='/old.dita'/>",
     "<keydef keys='k' href=''/>", R"(<xref href="/old.dita" id="e"/>)"},
    {"HrefStaysWhenOnlyAnElementIsNamed", "<xref id='e' keyref='k/e' href='/old.dita'/>",
     "<keydef keys='k'/>", R"(<xref href="/old.dita" id="e"/>)"},
    {"ElementPart", "<xref id='e' keyref='k/x'/>", "<keydef keys='k' href='/t.dita#t'/>",
     R"(<xref href="/t.dita#t/x" id="e"/>)"},
    {"ElementPartPullsAllTheSame", "<ph id='e' keyref='k/x'/>",
     "<keydef keys='k'><topicmeta><navtitle>N</navtitle></topicmeta></keydef>",
     R"(<ph id="e">N</ph>)"},
    {"OtherAttributesStay", "<xref id='e' keyref='k' type='topic'/>",
     "<keydef keys='k' href='/t.dita' type='task' format='pdf' scope='peer' audience='a'/>",
     R"(<xref href="/t.dita" id="e" type="topic"/>)"},
    {"TypeWithoutHref", "<ph id='e' keyref='k'/>", "<keydef keys='k' href='/t.dita'/>",
     R"(<ph id="e"/>)"},
    {"TopicrefGetsTheWholeDefinition", "<topicref id='e' keyref='k'/>",
     "<keydef keys='k' href='/t.dita'>"
     "<topicmeta><navtitle>N</navtitle></topicmeta><topicref id='x'/></keydef>",
     R"(<topicref href="/t.dita" id="e"><topicmeta><navtitle>N</navtitle></topicmeta>)"
     R"(<topicref id="x"/></topicref>)"},
    {"KeyrefInWhatIsPulledStays", "<ph id='e' keyref='k'/>",
     "<keydef keys='k'><topicmeta><navtitle><ph keyref='k'/></navtitle></topicmeta></keydef>",
     R"(<ph id="e"><ph keyref="k"/></ph>)"},
};

class ApplyKeyDefinitionTest : public KeyDefinitionsTest,
                               public testing::WithParamInterface<ApplyCase> {};

TEST_P(ApplyKeyDefinitionTest, MakesTheReferenceDirect) {
    EXPECT_EQ(appliedTo(GetParam().element, GetParam().definition), GetParam().applied);
    EXPECT_EQ(told(), Lines());
}

INSTANTIATE_TEST_SUITE_P(, ApplyKeyDefinitionTest, testing::ValuesIn(kApplyCases),
                         [](const auto& example) { return example.param.name; });

TEST_F(KeyDefinitionsTest, WithoutOneTheElementOnlyLosesItsKeyref) {
    keySpaceOf("");
    DOMDocument& document =
        loadSample("a.dita", "<topic><xref id='e' keyref='u/x' href='/h'><ph/>own</xref></topic>");
    EXPECT_EQ(applied(document, nullptr), R"(<xref href="/h" id="e"><ph/>own</xref>)");
    EXPECT_EQ(told(), Lines({keyNotFound("u")}));
}

TEST_F(KeyDefinitionsTest, TheDtdDecidesAndNotAnHrefThatIsThere) {
    // A type that the DTD doesn't know, and one that has an "href" against it.
    KeySpace keySpace = keySpaceOf("<keydef keys='k' href='/t.dita'/>");
    const DOMElement* const k = definitionOf(keySpace, u"k");
    EXPECT_EQ(
        applied(loadSample("a.dita", "<topic><other id='e' keyref='k' href='/o'/></topic>"), k),
        R"(<other href="/o" id="e"/>)");
    EXPECT_EQ(applied(loadSample("b.dita", "<topic><ph id='e' keyref='k' href='/o'/></topic>"), k),
              R"(<ph href="/o" id="e"/>)");
    EXPECT_EQ(applied(loadPlain("c.dita", "<topic><xref id='e' keyref='k' href='/o'/></topic>"), k),
              R"(<xref href="/o" id="e"/>)");
}

TEST_F(KeyDefinitionsTest, ContentCanBeLeftOut) {
    KeySpace keySpace = keySpaceOf(
        "<keydef keys='k' href='/t.dita'><topicmeta><linktext>L</linktext></topicmeta></keydef>");
    DOMDocument& document = loadSample("a.dita", "<topic><xref id='e' keyref='k'/></topic>");
    applyKeyDefinition(byId(document, "e"), definitionOf(keySpace, u"k"),
                       GrammarParserCache::instance().parserForDocument(document),
                       KeyContent::kLeave);
    EXPECT_EQ(shown(byId(document, "e")), R"(<xref href="/t.dita" id="e"/>)");
}

struct ContentCase {
    const char* name;
    const char* tag;
    const char* definition;  // what it holds
    const char* content;
};

// Where there are several sources, the one to be preferred stands last.
constexpr ContentCase kContentCases[] = {
    {"NoHrefSameTagFirst", "keyword",
     "<topicmeta><navtitle>N</navtitle><linktext>L</linktext>"
     "<keywords><keyword>W</keyword></keywords><keyword>S</keyword></topicmeta>",
     "S"},
    {"NoHrefThenKeyword", "ph",
     "<topicmeta><navtitle>N</navtitle><linktext>L</linktext>"
     "<keywords><keyword>W</keyword><keyword>V</keyword></keywords></topicmeta>",
     "W"},
    {"NoHrefThenLinktext", "term",
     "<topicmeta><navtitle>N</navtitle><linktext>L</linktext></topicmeta>", "L"},
    {"NoHrefThenNavtitle", "ph", "<topicmeta><navtitle>N</navtitle></topicmeta>", "N"},
    {"NoHrefThenNothing", "ph", "<topicmeta><p>P</p></topicmeta>", ""},
    {"NoHrefKeywordsWithoutKeyword", "ph",
     "<topicmeta><linktext>L</linktext><keywords><term>T</term></keywords></topicmeta>", "L"},
    {"NoHrefOnlyTheFirstKeywords", "ph",
     "<topicmeta><linktext>L</linktext><keywords/><keywords><keyword>W</keyword></keywords>"
     "</topicmeta>",
     "L"},
    {"NoHrefKeywordOutsideKeywords", "ph",
     "<topicmeta><keyword>W</keyword><linktext>L</linktext></topicmeta>", "L"},
    {"NoHrefKeywordDeeperInKeywords", "ph",
     "<topicmeta><linktext>L</linktext><keywords><ph><keyword>W</keyword></ph></keywords>"
     "</topicmeta>",
     "L"},
    {"TopicrefSameTagFirst", "topicref",
     "<topicmeta><linktext>L</linktext><topicref>S</topicref></topicmeta><topicref/>", "S"},
    {"TopicrefThenAll", "topicref",
     "<topicmeta><navtitle>N</navtitle><linktext>L</linktext></topicmeta><topicref/>",
     "<topicmeta><navtitle>N</navtitle><linktext>L</linktext></topicmeta><topicref/>"},
    {"TopicrefAllOfAnEmptyTopicmeta", "mapref", "<topicmeta/>", "<topicmeta/>"},
    {"HrefSameTagFirst", "link",
     "<topicmeta><navtitle>N</navtitle><linktext>L</linktext>"
     "<keywords><keyword>W</keyword></keywords><link>S</link></topicmeta>",
     "S"},
    {"HrefThenLinktext", "xref",
     "<topicmeta><navtitle>N</navtitle><keywords><keyword>W</keyword></keywords>"
     "<linktext>L</linktext></topicmeta>",
     "L"},
    {"HrefThenNavtitle", "link",
     "<topicmeta><keywords><keyword>W</keyword></keywords><navtitle>N</navtitle></topicmeta>", "N"},
    {"HrefNeverKeywords", "xref",
     "<topicmeta><keywords><keyword>W</keyword></keywords></topicmeta>", ""},
    {"TopicmetaNotFirst", "ph", "<topicref/><topicmeta><navtitle>N</navtitle></topicmeta>", ""},
    {"TopicrefTopicmetaNotFirst", "topicref",
     "<topicref/><topicmeta><navtitle>N</navtitle></topicmeta>", ""},
    {"TopicmetaBehindTextAndComment", "ph",
     "text<!--c--><topicmeta><navtitle>N</navtitle></topicmeta>", "N"},
    {"SpecialisedTopicmeta", "ph", "<bookmeta><navtitle>N</navtitle></bookmeta>", "N"},
    {"NothingInside", "topicref", "", ""},
    {"TextAlone", "topicref", "text", ""},
    {"SourceWithoutContent", "ph",
     "<topicmeta><linktext>L</linktext><keywords><keyword/></keywords></topicmeta>", ""},
    {"AllKindsOfNodeInTheirOrder", "ph",
     "<topicmeta><navtitle>a<!--c--><?i d?><ph id='x'>b<ph/></ph><![CDATA[<]]> </navtitle>"
     "</topicmeta>",
     R"(a<!--c--><?i d?><ph id="x">b<ph/></ph><![CDATA[<]]> )"},
};

class PullKeyContentTest : public KeyDefinitionsTest,
                           public testing::WithParamInterface<ContentCase> {};

TEST_P(PullKeyContentTest, TakesTheBestSource) {
    const std::string tag = GetParam().tag;
    const std::string content = GetParam().content;
    EXPECT_EQ(appliedTo("<" + tag + " id='e' keyref='k'/>",
                        "<keydef keys='k'>" + std::string(GetParam().definition) + "</keydef>"),
              content.empty() ? "<" + tag + " id=\"e\"/>"
                              : "<" + tag + " id=\"e\">" + content + "</" + tag + ">");
}

INSTANTIATE_TEST_SUITE_P(, PullKeyContentTest, testing::ValuesIn(kContentCases),
                         [](const auto& example) { return example.param.name; });

TEST_F(PullKeyContentTest, LeavesTheDefinitionAsItIs) {
    KeySpace keySpace =
        keySpaceOf("<keydef keys='k'><topicmeta><navtitle>N</navtitle></topicmeta></keydef>");
    applied(loadSample("a.ditamap", "<map><topicref id='e' keyref='k'/></map>"),
            definitionOf(keySpace, u"k"));
    EXPECT_EQ(definition(keySpace, "k"),
              R"(<keydef keys="k"><topicmeta><navtitle>N</navtitle></topicmeta></keydef>)");
}

TEST_F(PullKeyContentTest, AppendsToWhatIsThere) {
    KeySpace keySpace =
        keySpaceOf("<keydef keys='k'><topicmeta><navtitle>N</navtitle></topicmeta></keydef>");
    DOMDocument& document = loadSample("a.dita", "<topic><ph id='e'>own </ph></topic>");
    pullKeyContent(byId(document, "e"), *definitionOf(keySpace, u"k"), false);
    EXPECT_EQ(shown(byId(document, "e")), R"(<ph id="e">own N</ph>)");
}

TEST_F(PullKeyContentTest, ContentThatWouldNestTooDeeplyEndsTheRun) {
    KeySpace keySpace = keySpaceOf("<keydef keys='k'><topicmeta><navtitle>" + nestedElements(3000) +
                                   "</navtitle></topicmeta></keydef>");
    DOMDocument& document =
        loadSample("a.dita", "<topic>" + nestedElements(3000, "<ph id='e'/>") + "</topic>");
    EXPECT_THROW(pullKeyContent(byId(document, "e"), *definitionOf(keySpace, u"k"), false),
                 PublishException);
    DOMDocument& flat = loadSample("b.dita", "<topic><ph id='e'/></topic>");
    EXPECT_TRUE(pullKeyContent(byId(flat, "e"), *definitionOf(keySpace, u"k"), false));
}

TEST_F(PullKeyContentTest, WithoutDtdEveryTypeIsOneWithoutHref) {
    // A topic reference too then takes a keyword, and nothing takes the whole definition.
    KeySpace keySpace = plainKeySpaceOf(
        "<keydef keys='k' href='/t.dita'><topicmeta><linktext>L</linktext>"
        "<keywords><keyword>W</keyword></keywords></topicmeta></keydef>"
        "<keydef keys='n'><bookmeta><linktext>L</linktext></bookmeta></keydef>");
    for (const std::string tag : {"keydef", "topicref", "xref", "link", "ph"}) {
        DOMDocument& document =
            loadPlain(tag + ".dita", "<topic><" + tag + " id='e' keyref='k'/></topic>");
        EXPECT_EQ(applied(document, definitionOf(keySpace, u"k")),
                  "<" + tag + " id=\"e\">W</" + tag + ">");
    }
    // Without a class value only the name "topicmeta" makes one.
    EXPECT_EQ(applied(loadPlain("n.dita", "<topic><ph id='e' keyref='n'/></topic>"),
                      definitionOf(keySpace, u"n")),
              R"(<ph id="e"/>)");
}

TEST_F(PullKeyContentTest, ATopicrefIsOneByItsClassOrElseByItsName) {
    KeySpace keySpace =
        keySpaceOf("<keydef keys='k'><topicmeta><linktext>L</linktext></topicmeta></keydef>");
    const DOMElement& k = *definitionOf(keySpace, u"k");
    DOMDocument& document =
        loadPlain("a.dita",
                  "<topic><keydef id='byName'/><topicref id='unknownName'/>"
                  "<x class='- map/topicref x/x ' id='byClass'/><keydef class='- y/y ' id='no'/>"
                  "</topic>");
    for (const char* const id : {"byName", "unknownName", "byClass", "no"}) {
        pullKeyContent(byId(document, id), k, true);
    }
    EXPECT_EQ(shown(*document.getDocumentElement()),
              R"(<topic><keydef id="byName"><topicmeta><linktext>L</linktext></topicmeta></keydef>)"
              R"(<topicref id="unknownName">L</topicref>)"
              R"(<x class="- map/topicref x/x " id="byClass"><topicmeta><linktext>L</linktext>)"
              R"(</topicmeta></x><keydef class="- y/y " id="no">L</keydef></topic>)");
}

TEST(FindChildByTagTest, LooksAtTheNamesOfTheDirectChildrenAlone) {
    const RecordingHost host;
    const XmlSession session;
    const ParsedXml parsed(
        "<m>t<a><b id='deep'/></a><!--b--><B id='case'/>"
        "<b id='first'/><b id='second'/><bb id='longer'/></m>");
    const DOMElement* const found = findChildByTag(u"b", *parsed.root());
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(attribute(*found, "id"), "first");
    EXPECT_EQ(findChildByTag(u"m", *parsed.root()), nullptr);
    EXPECT_EQ(findChildByTag(u"", *parsed.root()), nullptr);
    EXPECT_EQ(findChildByTag(u"x", *found), nullptr);
}

}  // namespace
}  // namespace marrowpress
