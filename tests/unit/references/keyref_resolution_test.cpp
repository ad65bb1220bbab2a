#include "references/keyref_resolution.h"

#include <sstream>

#include "application/connection.h"
#include "host/stand_in_host.h"
#include "host/trace.h"
#include "tests/unit/references/key_samples.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;

/// "k" has an href and a link text, "m" is a map, "t" a topic in a file, "n" has no href,
/// "h" one with an empty topic id.
constexpr std::string_view kKeys =
    "<keydef keys='k' href='$F/t.dita' format='dita'><topicmeta><linktext>L</linktext></topicmeta>"
    "</keydef><keydef keys='m' href='$F/m.ditamap'/><keydef keys='t' href='$F/t.dita#t'/>"
    "<keydef keys='n'><topicmeta><linktext>N</linktext></topicmeta></keydef>"
    "<keydef keys='h' href='$F/t.dita#'/>";

class KeyrefProcessorTest : public KeySampleTest {
protected:
    KeyrefProcessorTest() {
        writePlain("t.dita", "<topic id='t'/>");
        writePlain("m.ditamap", "<map/>");
    }

    /// What `content` of a topic becomes.
    std::string resolved(std::string_view content, std::string_view keys = kKeys) {
        KeySpace keySpace = keySpaceOf(keys);
        DOMDocument& document = loadSample("a.dita", topicOf(content));
        host.forget();
        processor.resolveAllKeyrefs(document.getDocumentElement(), keySpace);
        return contentOf(document);
    }

    static std::string topicOf(std::string_view content) {
        return "<topic>" + std::string(content) + "</topic>";
    }

    std::string contentOf(const DOMDocument& document) const {
        constexpr std::string_view kOpening = "<topic>";
        constexpr std::string_view kClosing = "</topic>";
        const std::string text = shown(*document.getDocumentElement());
        EXPECT_TRUE(text.starts_with(kOpening)) << text;
        return text.substr(kOpening.size(), text.size() - kOpening.size() - kClosing.size());
    }

    const KeyrefProcessor processor;
};

struct ElementKeyrefCase {
    const char* name;
    const char* element;
    const char* resolved;
    std::vector<std::string> told;
};

class ElementKeyrefTest : public KeyrefProcessorTest,
                          public testing::WithParamInterface<ElementKeyrefCase> {};

TEST_P(ElementKeyrefTest, BecomesDirect) {
    EXPECT_EQ(resolved(GetParam().element), GetParam().resolved);
    EXPECT_EQ(told(), GetParam().told);
}

std::string nameOf(const testing::TestParamInfo<ElementKeyrefCase>& example) {
    return example.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    OfMedia, ElementKeyrefTest,
    testing::Values(
        ElementKeyrefCase{
            "Object", "<object datakeyref='k' data='/d'/>", R"(<object data="$F/t.dita"/>)", {}},
        ElementKeyrefCase{"ObjectGetsData",
                          "<object datakeyref='t/e'/>",
                          R"(<object data="$F/t.dita#t/e"/>)",
                          {}},
        ElementKeyrefCase{"ObjectWithoutHref",
                          "<object datakeyref='n' data='/d'/>",
                          R"(<object data="/d"/>)",
                          {}},
        ElementKeyrefCase{"ObjectUndefined",
                          "<object datakeyref='u/e' data='/d'>x</object>",
                          R"(<object data="/d">x</object>)",
                          {keyNotFound("u")}},
        ElementKeyrefCase{"ObjectWithoutKeyName",
                          "<object datakeyref='/e' data='/d'/>",
                          R"(<object data="/d"/>)",
                          {}},
        ElementKeyrefCase{"Param",
                          "<param name='src' keyref='k' value='v'/>",
                          R"(<param name="src" value="$F/t.dita"/>)",
                          {}},
        ElementKeyrefCase{"ParamOfAnyName",
                          "<param name='width' keyref='k' value='300'/>",
                          R"(<param name="width" value="$F/t.dita"/>)",
                          {}},
        ElementKeyrefCase{"ParamWithoutHref",
                          "<param name='src' keyref='n' value='v'/>",
                          R"(<param name="src" value="v"/>)",
                          {}},
        ElementKeyrefCase{"ParamUndefined",
                          "<param name='src' keyref='u' value='v'/>",
                          R"(<param name="src" value="v"/>)",
                          {keyNotFound("u")}},
        ElementKeyrefCase{
            "ParamInObject",
            "<object datakeyref='k'><param name='src' keyref='m'/></object>",
            R"(<object data="$F/t.dita"><param name="src" value="$F/m.ditamap"/></object>)",
            {}},
        ElementKeyrefCase{"ParamMarkedAsDealtWithIsNotSpared",
                          "<param name='x' keyref='--qs-mwpp-ignore-keyref'/>",
                          R"(<param name="x"/>)",
                          {keyNotFound("--qs-mwpp-ignore-keyref")}},
        ElementKeyrefCase{"ObjectKeyrefIsLikeAnyOther",
                          "<object keyref='k' data='/d'/>",
                          R"(<object data="/d">L</object>)",
                          {}}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    OfAbbreviatedForms, ElementKeyrefTest,
    testing::Values(
        ElementKeyrefCase{"Href",
                          "<abbreviated-form keyref='k' href='/h' xtrf='/x'/>",
                          R"(<abbreviated-form href="/h" keyref="--qs-mwpp-ignore-keyref" )"
                          R"(xtrf="$F/t.dita"/>)",
                          {}},
        ElementKeyrefCase{"ElementPart",
                          "<abbreviated-form keyref='m/e'/>",
                          R"(<abbreviated-form keyref="--qs-mwpp-ignore-keyref" )"
                          R"(xtrf="$F/m.ditamap#e"/>)",
                          {}},
        ElementKeyrefCase{"WithoutHref",
                          "<abbreviated-form keyref='n' xtrf='/x'/>",
                          R"(<abbreviated-form keyref="--qs-mwpp-ignore-keyref" xtrf="/x"/>)",
                          {}},
        ElementKeyrefCase{"Undefined",
                          "<abbreviated-form keyref='u' xtrf='/x'/>",
                          R"(<abbreviated-form keyref="--qs-mwpp-ignore-keyref" xtrf="/x"/>)",
                          {keyNotFound("u")}},
        ElementKeyrefCase{"WithoutKeyref",
                          "<abbreviated-form/>",
                          R"(<abbreviated-form keyref="--qs-mwpp-ignore-keyref"/>)",
                          {}},
        ElementKeyrefCase{"Again",
                          "<abbreviated-form keyref='--qs-mwpp-ignore-keyref' xtrf='/x'/>",
                          R"(<abbreviated-form keyref="--qs-mwpp-ignore-keyref" xtrf="/x"/>)",
                          {keyNotFound("--qs-mwpp-ignore-keyref")}},
        ElementKeyrefCase{"WhatIsBelowIsResolved",
                          "<abbreviated-form keyref='k'><ph keyref='n'/></abbreviated-form>",
                          R"(<abbreviated-form keyref="--qs-mwpp-ignore-keyref" xtrf="$F/t.dita">)"
                          R"(<ph>N</ph></abbreviated-form>)",
                          {}}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    OfImages, ElementKeyrefTest,
    testing::Values(
        ElementKeyrefCase{
            "Href", "<image keyref='k' href='/h'/>", R"(<image href="$F/t.dita"/>)", {}},
        ElementKeyrefCase{
            "WithoutHref", "<image keyref='n' href='/h'/>", R"(<image href="/h"/>)", {}},
        ElementKeyrefCase{"WithoutHrefButWithElementPart",
                          "<image keyref='n/e' href='/h'/>",
                          R"(<image href="#./e"/>)",
                          {cannotRead("")}},
        ElementKeyrefCase{"Undefined",
                          "<image keyref='u' href='/h'/>",
                          R"(<image href="/h"/>)",
                          {keyNotFound("u")}},
        ElementKeyrefCase{
            "WithoutKeyName", "<image keyref='/e' href='/h'/>", R"(<image href="/h"/>)", {}},
        ElementKeyrefCase{"WithoutKeyref", "<image href='/h'/>", R"(<image href="/h"/>)", {}},
        ElementKeyrefCase{"MarkedAsDealtWithIsNotSpared",
                          "<image keyref='--qs-mwpp-ignore-keyref'/>",
                          "<image/>",
                          {keyNotFound("--qs-mwpp-ignore-keyref")}}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    OfOthers, ElementKeyrefTest,
    testing::Values(
        ElementKeyrefCase{
            "WithHref", "<xref keyref='k'/>", R"(<xref href="$F/t.dita">L</xref>)", {}},
        ElementKeyrefCase{"WithHrefOfItsOwn",
                          "<xref keyref='k/e' href='/h'>own</xref>",
                          R"(<xref href="$F/t.dita#./e">own</xref>)",
                          {}},
        ElementKeyrefCase{"WithoutHref", "<ph keyref='k'/>", "<ph>L</ph>", {}},
        ElementKeyrefCase{
            "KeyWithoutHref", "<xref keyref='n' href='/h'/>", R"(<xref href="/h">N</xref>)", {}},
        ElementKeyrefCase{"Undefined",
                          "<xref keyref='u/e' href='/h'>own</xref>",
                          R"(<xref href="/h">own</xref>)",
                          {keyNotFound("u")}},
        ElementKeyrefCase{"NameIsExact",
                          "<ph keyref='K'/><ph keyref=' k'/>",
                          "<ph/><ph/>",
                          {keyNotFound("K"), keyNotFound(" k")}},
        ElementKeyrefCase{"WithoutKeyName", "<ph keyref='/e'/>", "<ph/>", {keyNotFound("")}},
        ElementKeyrefCase{"EmptyKeyrefIsNone", "<ph keyref=''/>", R"(<ph keyref=""/>)", {}},
        ElementKeyrefCase{"MarkedAsDealtWith",
                          "<ph keyref='--qs-mwpp-ignore-keyref'><ph keyref='n'/></ph>",
                          R"(<ph keyref="--qs-mwpp-ignore-keyref"><ph>N</ph></ph>)",
                          {}},
        ElementKeyrefCase{"InEachOther",
                          "<xref keyref='k'><ph keyref='n'/></xref>",
                          R"(<xref href="$F/t.dita"><ph>N</ph></xref>)",
                          {}},
        ElementKeyrefCase{"InDocumentOrder",
                          "<ph keyref='u1'><ph keyref='u2'/></ph><xref keyref='u3'/>",
                          "<ph><ph/></ph><xref/>",
                          {keyNotFound("u1"), keyNotFound("u2"), keyNotFound("u3")}}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    OfContent, ElementKeyrefTest,
    testing::Values(
        ElementKeyrefCase{"Start", "<p conkeyref='k/e'/>", R"(<p conref="$F/t.dita#./e"/>)", {}},
        ElementKeyrefCase{"WholeFile", "<p conkeyref='k'/>", R"(<p conref="$F/t.dita"/>)", {}},
        ElementKeyrefCase{"InAMap", "<p conkeyref='m/e'/>", R"(<p conref="$F/m.ditamap#e"/>)", {}},
        ElementKeyrefCase{"ReplacesAConref",
                          "<p conkeyref='t/e' conref='/c'/>",
                          R"(<p conref="$F/t.dita#t/e"/>)",
                          {}},
        ElementKeyrefCase{"EndBesideAnElement",
                          "<p conkeyref='t/e' conrefend='x.dita#x/f'/>",
                          R"(<p conref="$F/t.dita#t/e" conrefend="$F/t.dita#t/f"/>)",
                          {}},
        ElementKeyrefCase{"EndBesideAnElementOfTheFirstTopic",
                          "<p conkeyref='k/e' conrefend='x.dita#x/f'/>",
                          R"(<p conref="$F/t.dita#./e" conrefend="$F/t.dita#./f"/>)",
                          {}},
        ElementKeyrefCase{"EndWithLongElementPart",
                          "<p conkeyref='t/e' conrefend='x.dita#x/f/g'/>",
                          R"(<p conref="$F/t.dita#t/e" conrefend="$F/t.dita#t/f/g"/>)",
                          {}},
        ElementKeyrefCase{"EndBesideATopic",
                          "<p conkeyref='t' conrefend='x.dita#x/f'/>",
                          R"(<p conref="$F/t.dita#t" conrefend="$F/t.dita#x"/>)",
                          {}},
        ElementKeyrefCase{"EndBesideAFileWithoutATopic",
                          "<p conkeyref='k' conrefend='x#/f'/>",
                          R"(<p conref="$F/t.dita" conrefend="$F/t.dita#"/>)",
                          {}},
        ElementKeyrefCase{"EndBesideAnElementOfNoTopic",
                          "<p conkeyref='h/e' conrefend='x#x/f'/>",
                          R"(<p conref="$F/t.dita#/e" conrefend="$F/t.dita/f"/>)",
                          {}},
        ElementKeyrefCase{"EndInAMap",
                          "<p conkeyref='m/e' conrefend='x.ditamap#x/f'/>",
                          R"(<p conref="$F/m.ditamap#e" conrefend="$F/m.ditamap#x"/>)",
                          {}},
        ElementKeyrefCase{"EndBesideAFile",
                          "<p conkeyref='k' conrefend='#x/f'/>",
                          R"(<p conref="$F/t.dita" conrefend="$F/t.dita#x"/>)",
                          {}},
        ElementKeyrefCase{"EndWithoutElementStays",
                          "<p conkeyref='t/e' conrefend='x.dita#f'/>",
                          R"(<p conref="$F/t.dita#t/e" conrefend="x.dita#f"/>)",
                          {}},
        ElementKeyrefCase{"EndWithEmptyElementStays",
                          "<p conkeyref='t/e' conrefend='x.dita#f/'/>",
                          R"(<p conref="$F/t.dita#t/e" conrefend="x.dita#f/"/>)",
                          {}},
        ElementKeyrefCase{"UndefinedFallsBack",
                          "<p conkeyref='u/e' conref='/c' conrefend='x#x/f'>o</p>",
                          R"(<p conref="/c" conrefend="x#x/f">o</p>)",
                          {keyNotFound("u")}},
        ElementKeyrefCase{"WithoutHrefFallsBack",
                          "<p conkeyref='n' conref='/c' conrefend='x#x/f'/>",
                          R"(<p conref="/c" conrefend="x#x/f"/>)",
                          {}},
        ElementKeyrefCase{"WithoutKeyNameFallsBack",
                          "<p conkeyref='/e' conref='/c'/>",
                          R"(<p conref="/c"/>)",
                          {}},
        ElementKeyrefCase{"WithoutHrefButWithElementPart",
                          "<p conkeyref='n/e'/>",
                          R"(<p conref="#./e"/>)",
                          {cannotRead("")}},
        ElementKeyrefCase{"InEachOther",
                          "<p conkeyref='t/e'><ph conkeyref='m/f'/></p>",
                          R"(<p conref="$F/t.dita#t/e"><ph conref="$F/m.ditamap#f"/></p>)",
                          {}},
        ElementKeyrefCase{"BesideAKeyref",
                          "<xref keyref='k' conkeyref='t/e'/>",
                          R"(<xref conref="$F/t.dita#t/e" href="$F/t.dita">L</xref>)",
                          {}},
        ElementKeyrefCase{
            "ConrefendAlone", "<p conrefend='x#x/f'/>", R"(<p conrefend="x#x/f"/>)", {}}),
    nameOf);

TEST_F(KeyrefProcessorTest, ATopicrefGetsTheDefinitionWithItsTopicmeta) {
    KeySpace keySpace = keySpaceOf(kKeys);
    DOMDocument& map = loadSample("r.ditamap", "<map><topicref keyref='k'/></map>");
    processor.resolveAllKeyrefs(map.getDocumentElement(), keySpace);
    EXPECT_EQ(shown(*map.getDocumentElement()),
              R"(<map><topicref href="$F/t.dita"><topicmeta><linktext>L</linktext></topicmeta>)"
              R"(</topicref></map>)");
}

constexpr std::string_view kEveryKind =
    "<p conkeyref='t/e'/><xref keyref='k'/><image keyref='k'/><abbreviated-form keyref='k'/>"
    "<object datakeyref='k'><param keyref='k'/></object>";

struct PassCase {
    const char* name;
    void (*pass)(const KeyrefProcessor&, DOMElement*, KeySpace&);
    const char* resolved;
    const char* definition;
};

constexpr const char* kOpenDefinition = R"(<keydef keyref="t" keys="chained"/>)";

class KeyrefPassTest : public KeyrefProcessorTest, public testing::WithParamInterface<PassCase> {};

TEST_P(KeyrefPassTest, ChangesItsOwnKindAlone) {
    KeySpace keySpace = keySpaceOf("<keydef keys='chained' keyref='t'/>" + std::string(kKeys));
    DOMDocument& document = loadSample("a.dita", topicOf(kEveryKind));
    GetParam().pass(processor, document.getDocumentElement(), keySpace);
    EXPECT_EQ(contentOf(document), GetParam().resolved);
    EXPECT_EQ(definition(keySpace, "chained"), GetParam().definition);
}

INSTANTIATE_TEST_SUITE_P(
    , KeyrefPassTest,
    testing::Values(
        PassCase{"KeyDefinitionChains",
                 [](const KeyrefProcessor& processor, DOMElement* root, KeySpace& keys) {
                     processor.resolveKeyDefinitionChains(keys, *root->getOwnerDocument());
                 },
                 R"(<p conkeyref="t/e"/><xref keyref="k"/><image keyref="k"/>)"
                 R"(<abbreviated-form keyref="k"/>)"
                 R"(<object datakeyref="k"><param keyref="k"/></object>)",
                 R"(<keydef href="$F/t.dita#t" keys="chained"/>)"},
        PassCase{"MultimediaKeyrefs",
                 [](const KeyrefProcessor& processor, DOMElement* root, KeySpace& keys) {
                     processor.resolveMultimediaKeyrefs(root, keys);
                 },
                 R"(<p conkeyref="t/e"/><xref keyref="k"/><image keyref="k"/>)"
                 R"(<abbreviated-form keyref="k"/>)"
                 R"(<object data="$F/t.dita"><param value="$F/t.dita"/></object>)",
                 kOpenDefinition},
        PassCase{"AbbreviatedForms",
                 [](const KeyrefProcessor& processor, DOMElement* root, KeySpace& keys) {
                     processor.resolveAbbreviatedForms(root, keys);
                 },
                 R"(<p conkeyref="t/e"/><xref keyref="k"/><image keyref="k"/>)"
                 R"(<abbreviated-form keyref="--qs-mwpp-ignore-keyref" xtrf="$F/t.dita"/>)"
                 R"(<object datakeyref="k"><param keyref="k"/></object>)",
                 kOpenDefinition},
        PassCase{"ImageKeyrefs",
                 [](const KeyrefProcessor& processor, DOMElement* root, KeySpace& keys) {
                     processor.resolveImageKeyrefs(root, keys);
                 },
                 R"(<p conkeyref="t/e"/><xref keyref="k"/><image href="$F/t.dita"/>)"
                 R"(<abbreviated-form keyref="k"/>)"
                 R"(<object datakeyref="k"><param keyref="k"/></object>)",
                 kOpenDefinition},
        // What the passes before it would have taken has no rule of its own here.
        PassCase{"ElementKeyrefs",
                 [](const KeyrefProcessor& processor, DOMElement* root, KeySpace& keys) {
                     processor.resolveElementKeyrefs(root, keys);
                 },
                 R"(<p conkeyref="t/e"/><xref href="$F/t.dita">L</xref>)"
                 R"(<image href="$F/t.dita">L</image>)"
                 R"(<abbreviated-form href="$F/t.dita">L</abbreviated-form>)"
                 R"(<object datakeyref="k"><param>L</param></object>)",
                 kOpenDefinition},
        PassCase{"Conkeyrefs",
                 [](const KeyrefProcessor& processor, DOMElement* root, KeySpace& keys) {
                     processor.resolveConkeyrefs(root, keys);
                 },
                 R"(<p conref="$F/t.dita#t/e"/><xref keyref="k"/><image keyref="k"/>)"
                 R"(<abbreviated-form keyref="k"/>)"
                 R"(<object datakeyref="k"><param keyref="k"/></object>)",
                 kOpenDefinition}),
    [](const auto& example) { return example.param.name; });

TEST_F(KeyrefProcessorTest, ThePassesHaveAnOrder) {
    EXPECT_EQ(resolved("<p conkeyref='con'/><xref keyref='element'/><image keyref='image'/>"
                       "<abbreviated-form keyref='form'/><object datakeyref='object'/>",
                       "<keydef keys='k' keyref='chain'/>"),
              "<p/><xref/><image/><abbreviated-form keyref=\"--qs-mwpp-ignore-keyref\"/><object/>");
    EXPECT_EQ(told(), Lines({keyNotFound("chain"), keyNotFound("object"), keyNotFound("form"),
                             keyNotFound("image"), keyNotFound("element"), keyNotFound("con")}));
}

struct OwnRuleCase {
    const char* name;
    const char* content;
    const char* resolved;
};

class OwnRuleTest : public KeyrefProcessorTest, public testing::WithParamInterface<OwnRuleCase> {};

TEST_P(OwnRuleTest, HoldsWhereASubtreeHasNoElementsOfAnother) {
    EXPECT_EQ(resolved(GetParam().content), GetParam().resolved);
}

INSTANTIATE_TEST_SUITE_P(
    , OwnRuleTest,
    testing::Values(
        OwnRuleCase{"Object", "<object datakeyref='k'/>", R"(<object data="$F/t.dita"/>)"},
        OwnRuleCase{"Param", "<p><param keyref='k'/></p>", R"(<p><param value="$F/t.dita"/></p>)"},
        OwnRuleCase{"Image", "<p><image keyref='k'/></p>", R"(<p><image href="$F/t.dita"/></p>)"},
        OwnRuleCase{"AbbreviatedForm", "<p><abbreviated-form/></p>",
                    R"(<p><abbreviated-form keyref="--qs-mwpp-ignore-keyref"/></p>)"}),
    [](const auto& example) { return example.param.name; });

TEST_F(KeyrefProcessorTest, DefinitionsAreCompleteBeforeTheyAreRead) {
    EXPECT_EQ(resolved("<object datakeyref='a'/><abbreviated-form keyref='a'/><image keyref='a'/>"
                       "<xref keyref='a'/><p conkeyref='a/e'/>",
                       "<keydef keys='a' keyref='b'/>"
                       "<keydef keys='b' href='/b#t'><topicmeta><linktext>L</linktext></topicmeta>"
                       "</keydef>"),
              R"(<object data="/b#t"/><abbreviated-form keyref="--qs-mwpp-ignore-keyref" )"
              R"(xtrf="/b#t"/><image href="/b#t"/><xref href="/b#t">L</xref><p conref="/b#t/e"/>)");
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeyrefProcessorTest, KeyrefsInWhatWasPulledWaitForTheNextRun) {
    constexpr std::string_view kNested =
        "<keydef keys='o'><topicmeta><linktext>of <ph keyref='i'/></linktext></topicmeta></keydef>"
        "<keydef keys='i'><topicmeta><linktext>I</linktext></topicmeta></keydef>";
    KeySpace keySpace = keySpaceOf(kNested);
    DOMDocument& document = loadSample("a.dita", topicOf("<xref keyref='o'/>"));
    processor.resolveAllKeyrefs(document.getDocumentElement(), keySpace);
    EXPECT_EQ(contentOf(document), R"(<xref>of <ph keyref="i"/></xref>)");
    processor.resolveAllKeyrefs(document.getDocumentElement(), keySpace);
    EXPECT_EQ(contentOf(document), "<xref>of <ph>I</ph></xref>");
}

TEST_F(KeyrefProcessorTest, ASubtreeIsAllThatIsChanged) {
    KeySpace keySpace = keySpaceOf(kKeys);
    DOMDocument& document =
        loadSample("a.dita", topicOf("<ph keyref='n'/><p id='root' keyref='n'><ph keyref='n'/></p>"
                                     "<ph keyref='n'/>"));
    processor.resolveAllKeyrefs(&byId(document, "root"), keySpace);
    EXPECT_EQ(contentOf(document),
              R"(<ph keyref="n"/><p id="root"><ph>N</ph></p><ph keyref="n"/>)");
}

TEST_F(KeyrefProcessorTest, ANullRootIsNoElements) {
    KeySpace keySpace = keySpaceOf("<keydef keys='a' keyref='u'/>");
    host.forget();
    processor.resolveAllKeyrefs(nullptr, keySpace);
    EXPECT_EQ(definition(keySpace, "a"), R"(<keydef keyref="u" keys="a"/>)");
    EXPECT_EQ(host.commands(), Lines());
    EXPECT_EQ(told(), Lines());
}

TEST_F(KeyrefProcessorTest, AsksForTheDtdOfTheSubtreeTwiceAndLoadsItOnce) {
    KeySpace keySpace = keySpaceOf("");
    DOMDocument& document = loadSample("a.dita", "<topic/>");
    const std::string start = startOf(folder.file("a.dita"));
    host.forget();
    processor.resolveAllKeyrefs(document.getDocumentElement(), keySpace);
    EXPECT_EQ(host.commands(), Lines({start, questionFor("-//OASIS//DTD DITA Map//EN"), kEnd,
                                      kTerminate, start, kEnd}));
    host.forget();
    processor.resolveAllKeyrefs(document.getDocumentElement(), keySpace);
    EXPECT_EQ(host.commands(), Lines({start, kEnd, start, kEnd}));
}

TEST_F(KeyrefProcessorTest, TheDtdOfTheSubtreeDecidesInTheKeySpaceToo) {
    KeySpace keySpace = keySpaceOf("<keydef keys='a' keyref='k'/>" + std::string(kKeys));
    DOMDocument& document = loadPlain("a.dita", topicOf("<xref keyref='k'/><image keyref='k'/>"));
    processor.resolveAllKeyrefs(document.getDocumentElement(), keySpace);
    EXPECT_EQ(definition(keySpace, "a"), R"(<keydef keys="a">L</keydef>)");
    EXPECT_EQ(contentOf(document), R"(<xref>L</xref><image href="$F/t.dita"/>)");
}

TEST_F(KeyrefProcessorTest, WithoutClassValuesNamesDecide) {
    KeySpace keySpace = keySpaceOf(kKeys);
    DOMDocument& document = loadPlain(
        "a.dita", topicOf(std::string(kEveryKind) + "<topicref keyref='k'/>"
                                                    "<fig class='- topic/image ' keyref='k'/>"
                                                    "<image class='- x/x ' keyref='k'/>"));
    processor.resolveAllKeyrefs(document.getDocumentElement(), keySpace);
    EXPECT_EQ(contentOf(document),
              R"(<p conref="$F/t.dita#t/e"/><xref>L</xref><image href="$F/t.dita"/>)"
              R"(<abbreviated-form keyref="--qs-mwpp-ignore-keyref" xtrf="$F/t.dita"/>)"
              R"(<object data="$F/t.dita"><param value="$F/t.dita"/></object>)"
              R"(<topicref>L</topicref><fig class="- topic/image " href="$F/t.dita"/>)"
              R"(<image class="- x/x ">L</image>)");
}

TEST_F(KeyrefProcessorTest, TheKeySpaceItselfIsLookedThroughEveryTime) {
    KeySpace keySpace = keySpaceOf(kKeys);
    DOMDocument& document = loadSample("a.dita", "<topic/>");
    for (int round = 0; round < 2; ++round) {
        processor.resolveAllKeyrefs(document.getDocumentElement(), keySpace);
        definitionOf(keySpace, u"n")->setAttribute(u"keyref", u"t");
        processor.resolveKeyDefinitionChains(keySpace, keySpace.document());
        EXPECT_EQ(definition(keySpace, "n"),
                  R"(<keydef href="$F/t.dita#t" keys="n"><topicmeta><linktext>N</linktext>)"
                  R"(</topicmeta></keydef>)");
    }
    // A pass over the key space that found nothing lets the next one look again as well.
    processor.resolveKeyDefinitionChains(keySpace, keySpace.document());
    definitionOf(keySpace, u"n")->setAttribute(u"keyref", u"m");
    processor.resolveAllKeyrefs(document.getDocumentElement(), keySpace);
    EXPECT_EQ(attribute(*definitionOf(keySpace, u"n"), "keyref"), "");
}

TEST_F(KeyrefProcessorTest, ResolvedChainsAreLookedThroughAgainAfterAChange) {
    KeySpace keySpace = keySpaceOf(kKeys);
    DOMDocument& document = loadSample("a.dita", "<topic/>");
    DOMElement* const root = document.getDocumentElement();
    processor.resolveAllKeyrefs(root, keySpace);
    definitionOf(keySpace, u"n")->setAttribute(u"keyref", u"t");
    processor.resolveAllKeyrefs(root, keySpace);
    EXPECT_EQ(attribute(*definitionOf(keySpace, u"n"), "keyref"), "t");
    keySpace.noteChange();
    processor.resolveAllKeyrefs(root, keySpace);
    EXPECT_EQ(attribute(*definitionOf(keySpace, u"n"), "keyref"), "");
}

struct SequenceCase {
    const char* name;
    const char* definitions;
    const char* roots;  // k: the key space document, a and b: topics, p: one without DTD
};

/// All that a sequence of runs does, to the host and to the trees.
struct Outcome {
    std::string trace;
    std::string trees;
};

class ResolvedChainsTest : public testing::TestWithParam<SequenceCase> {
protected:
    Outcome outcomeOf(bool isShortCutOff) const {
        std::ostringstream lines;
        Trace trace(lines);
        StandInHostOptions options;
        options.trace = &trace;
        options.resolvePublicId = [this](std::string_view) -> std::optional<std::string> {
            return folder_.write("sample.dtd", kKeySampleDtd);
        };
        StandInHost host(std::move(options));
        QsApiInterfacesC interfaces(host.provider());
        interfaces.askWhoFreesTexts();
        interfaces.connect();
        const XmlSession session;
        std::string trees;
        run(isShortCutOff, trees);
        return {lines.str(), trees};
    }

private:
    DOMDocument& load(const std::string& name, const std::string& doctype,
                      const std::string& text) const {
        folder_.write(name, doctype + text);
        return DocumentStore::instance().mustLoad(folder_.file16(name));
    }

    void run(bool isShortCutOff, std::string& trees) const {
        const std::string map = R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "m.dtd">)";
        const std::string topic = R"(<!DOCTYPE topic PUBLIC "-//OASIS//DTD DITA Map//EN" "m.dtd">)";
        const std::string text =
            "<topic><xref keyref='a'/><xref keyref='b/e'/><ph keyref='c'/><image keyref='d'/>"
            "<p conkeyref='a/e'/></topic>";
        KeySpace keys(load("k", map, "<map>" + std::string(GetParam().definitions) + "</map>"));
        for (DOMElement* const child : childElementsOf(*keys.document().getDocumentElement())) {
            child->setIdAttribute(u"keys", true);
        }
        const std::map<char, DOMDocument*> documents{{'k', &keys.document()},
                                                     {'a', &load("a", topic, text)},
                                                     {'b', &load("b", topic, text)},
                                                     {'p', &load("p", "", text)}};
        for (const char root : std::string_view(GetParam().roots)) {
            if (isShortCutOff) {
                keys.noteChange();
            }
            KeyrefProcessor().resolveAllKeyrefs(documents.at(root)->getDocumentElement(), keys);
            for (const auto& [name, document] : documents) {
                trees += printed(*document) + "\n";
            }
        }
    }

    TemporaryFolder folder_;
};

TEST_P(ResolvedChainsTest, PassingThemOverShowsNowhere) {
    const Outcome with = outcomeOf(false);
    const Outcome without = outcomeOf(true);
    EXPECT_EQ(with.trace, without.trace);
    EXPECT_EQ(with.trees, without.trees);
    EXPECT_NE(with.trace.find("EntityResolver start"), std::string::npos);
    EXPECT_NE(with.trace.find("HostConsoleWrite"), std::string::npos);
}

constexpr SequenceCase kSequences[] = {
    {"Direct", "<keydef keys='a' href='/a'/>", "aabkpa"},
    {"Chain", "<keydef keys='a' keyref='b'/><keydef keys='b' href='/b'/>", "abkab"},
    {"ChainFirstMetWithoutDtd", "<keydef keys='a' keyref='b'/><keydef keys='b' href='/b'/>",
     "pabkp"},
    {"FinishedKeys",
     "<keydef keys='b' href='/b'/><keydef keys='a' keyref='b'/><keydef keys='c' keyref='b'/>"
     "<keydef keys='d' keyref='a'/>",
     "kaabkb"},
    {"Cycle", "<keydef keys='a' keyref='b'/><keydef keys='b' keyref='a'/>", "abpkab"},
    {"Undefined", "<keydef keys='a' keyref='u'/><keydef keys='b' keyref='a/e'/>", "aabbkka"},
    {"ReferencesInsideDefinitions",
     "<keydef keys='a'><topicmeta><linktext><ph keyref='c'/></linktext></topicmeta>"
     "<topicref keyref='b'/></keydef><keydef keys='b'><topicmeta/><topicref keyref='a'/></keydef>"
     "<keydef keys='c'><topicmeta><linktext><ph keyref='a'/></linktext></topicmeta></keydef>",
     "abkakbpkab"},
    // The chain serves p, which the walk has passed already, with a reference of its own.
    {"ReferencesLeftBehindTheWalk",
     "<ph keys='p' keyref='y'/><keydef keys='a' keyref='p'/>"
     "<keydef keys='y'><topicmeta><ph><topicref keyref='u'/></ph></topicmeta></keydef>",
     "abab"},
    {"NoKeysAtAll", "", "abkpa"},
};

INSTANTIATE_TEST_SUITE_P(, ResolvedChainsTest, testing::ValuesIn(kSequences),
                         [](const auto& example) { return example.param.name; });

}  // namespace
}  // namespace marrowpress
