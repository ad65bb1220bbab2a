#include "profiling/ditaval_filters.h"

#include "dom/element_walker.h"
#include "references/ditamap_ref_node_filter.h"
#include "tests/unit/profiling/profile_samples.h"
#include "tests/unit/references/filter_answers.h"

namespace marrowpress {
namespace {

struct PropCase {
    const char* name;
    const char* xml;
    const char* forDefault;
    const char* forAttribute;
    const char* forValue;
};

constexpr PropCase kPropCases[] = {
    {"Nothing", "<prop/>", "reject", "reject", "reject"},
    {"Exclude", "<prop action='exclude'/>", "accept", "reject", "reject"},
    {"ExcludeWithEmpty", "<prop att='' val='' action='exclude'/>", "accept", "reject", "reject"},
    {"Include", "<prop action='include'/>", "reject", "reject", "reject"},
    {"ExcludeInOtherCase", "<prop action='Exclude'/>", "reject", "reject", "reject"},
    {"ExcludeAndMore", "<prop action='excluded'/>", "reject", "reject", "reject"},
    {"ExcludeWithBlank", "<prop action='exclude '/>", "reject", "reject", "reject"},
    {"AttributeExcluded", "<prop att='a' action='exclude'/>", "reject", "accept", "reject"},
    {"AttributeIncluded", "<prop att='a' action='include'/>", "reject", "accept", "reject"},
    {"AttributeFlagged", "<prop att='a' action='flag'/>", "reject", "accept", "reject"},
    {"AttributeAlone", "<prop att='a'/>", "reject", "accept", "reject"},
    {"AttributeWithEmptyValue", "<prop att='a' val=''/>", "reject", "accept", "reject"},
    {"BlankAttribute", "<prop att=' ' action='exclude'/>", "reject", "accept", "reject"},
    {"ValueExcluded", "<prop att='a' val='v' action='exclude'/>", "reject", "reject", "accept"},
    {"ValueIncluded", "<prop att='a' val='v' action='include'/>", "reject", "reject", "accept"},
    {"ValueFlagged", "<prop att='a' val='v' action='flag'/>", "reject", "reject", "accept"},
    {"ValueWithoutAction", "<prop att='a' val='v'/>", "reject", "reject", "accept"},
    {"BlankValue", "<prop att='a' val=' '/>", "reject", "reject", "accept"},
    {"ValueWithoutAttribute", "<prop val='v' action='exclude'/>", "reject", "reject", "reject"},
    {"ValueWithEmptyAttribute", "<prop att='' val='v' action='exclude'/>", "reject", "reject",
     "reject"},
    {"OtherElement", "<revprop att='a' val='v' action='exclude'/>", "skip", "skip", "skip"},
    {"OtherElementLikeADefault", "<val action='exclude'/>", "skip", "skip", "skip"},
    {"OtherElementLikeAnAttribute", "<val att='a'/>", "skip", "skip", "skip"},
    {"NameInOtherCase", "<Prop action='exclude'/>", "skip", "skip", "skip"},
    {"NameWithPrefix", "<d:prop xmlns:d='urn:d' action='exclude'/>", "skip", "skip", "skip"},
};

class DitaValNodeFilterTest : public XmlTest, public testing::WithParamInterface<PropCase> {};

TEST_P(DitaValNodeFilterTest, Answers) {
    EXPECT_EQ(answerAbout(DefaultExcludeNodeFilter(), GetParam().xml), GetParam().forDefault);
    EXPECT_EQ(answerAbout(DefaultValNodeFilter(), GetParam().xml), GetParam().forAttribute);
    EXPECT_EQ(answerAbout(DitaValPropNodeFilter(), GetParam().xml), GetParam().forValue);
}

INSTANTIATE_TEST_SUITE_P(, DitaValNodeFilterTest, testing::ValuesIn(kPropCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

struct MakerCase {
    const char* name;
    FilterMaker make;
};

constexpr MakerCase kMakerCases[] = {
    {"DitaValPropNodeFilter", makeFilter<DitaValPropNodeFilter>},
    {"DefaultExcludeNodeFilter", makeFilter<DefaultExcludeNodeFilter>},
    {"DefaultValNodeFilter", makeFilter<DefaultValNodeFilter>},
    {"DitaValAttrValAcceptFilter",
     []() -> std::unique_ptr<xercesc::DOMNodeFilter> {
         return std::make_unique<DitaValAttrValAcceptFilter>(u"audience", u"a");
     }},
    {"DitaValAttrValRejectFilter",
     []() -> std::unique_ptr<xercesc::DOMNodeFilter> {
         return std::make_unique<DitaValAttrValRejectFilter>(u"audience", u"a");
     }},
};

class NoElementTest : public XmlTest, public testing::WithParamInterface<MakerCase> {};

TEST_P(NoElementTest, IsRejected) {
    const auto filter = GetParam().make();
    const ParsedXml parsed("<prop audience='a'>text<!--comment--><?pi data?></prop>");
    EXPECT_EQ(answerAbout(*filter, nullptr), "reject");
    EXPECT_EQ(answerAbout(*filter, &parsed.document()), "reject");
    EXPECT_EQ(answerAbout(*filter, parsed.root()->getAttributeNode(u"audience")), "reject");
    for (const xercesc::DOMNode* node = parsed.root()->getFirstChild(); node;
         node = node->getNextSibling()) {
        EXPECT_EQ(answerAbout(*filter, node), "reject") << node->getNodeType();
    }
}

INSTANTIATE_TEST_SUITE_P(, NoElementTest, testing::ValuesIn(kMakerCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

struct TokenCase {
    const char* name;
    const char* xml;
    const char* ifListedStay;  // values are excluded unless listed
    const char* ifListedFall;  // values are included unless listed
};

// The values "a" and "b" are listed.
constexpr TokenCase kTokenCases[] = {
    {"Absent", "<p platform='a'/>", "skip", "skip"},
    {"Empty", "<p audience=''/>", "skip", "skip"},
    {"OneBlank", "<p audience=' '/>", "reject", "reject"},
    {"Blanks", "<p audience='   '/>", "reject", "reject"},
    {"Listed", "<p audience='a'/>", "accept", "reject"},
    {"Unlisted", "<p audience='c'/>", "reject", "accept"},
    {"AllListed", "<p audience='a b'/>", "accept", "reject"},
    {"ListedTwice", "<p audience='a a'/>", "accept", "reject"},
    {"ListedFirst", "<p audience='a c'/>", "accept", "accept"},
    {"ListedLast", "<p audience='c a'/>", "accept", "accept"},
    {"UnlistedInTheMiddle", "<p audience='a c b'/>", "accept", "accept"},
    {"NoneListed", "<p audience='c d'/>", "reject", "accept"},
    {"RunsOfBlanks", "<p audience='  a   b  '/>", "accept", "reject"},
    {"OtherCase", "<p audience='A'/>", "reject", "accept"},
    {"BeginningOfAToken", "<p audience='ab'/>", "reject", "accept"},
    {"Tab", "<p audience='a&#9;b'/>", "reject", "accept"},
    {"TabBehindABlank", "<p audience='a &#9;'/>", "accept", "accept"},
    {"TabAlone", "<p audience='&#9;'/>", "reject", "accept"},
    {"LineEnd", "<p audience='a&#10;b'/>", "reject", "accept"},
    {"CarriageReturn", "<p audience='a&#13;b'/>", "reject", "accept"},
    {"NoBreakSpace", "<p audience='a&#xA0;b'/>", "reject", "accept"},
    {"IdeographicSpace", "<p audience='a&#x3000;b'/>", "reject", "accept"},
    {"Comma", "<p audience='a,b'/>", "reject", "accept"},
    {"Parentheses", "<p audience='(a)'/>", "reject", "accept"},
    {"Group", "<p audience='(a b)'/>", "reject", "accept"},
    {"GroupName", "<p audience='g(a b)'/>", "reject", "accept"},
    {"ParenthesesApart", "<p audience='( a )'/>", "accept", "accept"},
    {"NothingFromTheParent", "<q audience='a'/>", "accept", "reject"},
    {"AnyNameAndKind", "<map class='- map/map ' audience='a'/>", "accept", "reject"},
    {"FromTheDtd", "<!DOCTYPE p [<!ATTLIST p audience CDATA 'a'>]><p/>", "accept", "reject"},
};

class DitaValAttrValFilterCaseTest : public XmlTest,
                                     public testing::WithParamInterface<TokenCase> {};

TEST_P(DitaValAttrValFilterCaseTest, Answers) {
    const auto listedStay = withValues<DitaValAttrValAcceptFilter>(u"audience", {u"a", u"b"});
    const auto listedFall = withValues<DitaValAttrValRejectFilter>(u"audience", {u"a", u"b"});
    EXPECT_EQ(answerAbout(*listedStay, GetParam().xml), GetParam().ifListedStay);
    EXPECT_EQ(answerAbout(*listedFall, GetParam().xml), GetParam().ifListedFall);
}

INSTANTIATE_TEST_SUITE_P(, DitaValAttrValFilterCaseTest, testing::ValuesIn(kTokenCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

using DitaValAttrValFilterTest = XmlTest;

TEST_F(DitaValAttrValFilterTest, WithoutValuesAllTokensAreUnlisted) {
    const DitaValAttrValAcceptFilter listedStay(u"audience");
    const DitaValAttrValRejectFilter listedFall(u"audience");
    EXPECT_EQ(answerAbout(listedStay, "<p audience='a'/>"), "reject");
    EXPECT_EQ(answerAbout(listedFall, "<p audience='a'/>"), "accept");
    EXPECT_EQ(answerAbout(listedStay, "<p audience=' '/>"), "reject");
    EXPECT_EQ(answerAbout(listedFall, "<p audience=' '/>"), "reject");
    EXPECT_EQ(answerAbout(listedStay, "<p audience=''/>"), "skip");
    EXPECT_EQ(answerAbout(listedFall, "<p audience=''/>"), "skip");
}

TEST_F(DitaValAttrValFilterTest, TheFirstValueComesWithTheConstructor) {
    EXPECT_EQ(answerAbout(DitaValAttrValAcceptFilter(u"audience", u"a"), "<p audience='a'/>"),
              "accept");
    EXPECT_EQ(answerAbout(DitaValAttrValRejectFilter(u"audience", u"a"), "<p audience='a'/>"),
              "reject");
}

TEST_F(DitaValAttrValFilterTest, AnEmptyValueAddsNothing) {
    EXPECT_EQ(DitaValAttrValAcceptFilter(u"audience", u"").acceptTokens({u""}),
              xercesc::DOMNodeFilter::FILTER_REJECT);
    EXPECT_EQ(DitaValAttrValRejectFilter(u"audience", u"").acceptTokens({u""}),
              xercesc::DOMNodeFilter::FILTER_ACCEPT);
}

TEST_F(DitaValAttrValFilterTest, NoTokenCanSaveAnElementThatHasNone) {
    EXPECT_EQ(DitaValAttrValAcceptFilter(u"audience", u"a").acceptTokens({}),
              xercesc::DOMNodeFilter::FILTER_REJECT);
    EXPECT_EQ(DitaValAttrValRejectFilter(u"audience", u"a").acceptTokens({}),
              xercesc::DOMNodeFilter::FILTER_REJECT);
}

TEST_F(DitaValAttrValFilterTest, TakesValuesThatDifferFromItsOwnRule) {
    const DitaValAttrValAcceptFilter excludesUnlisted(u"audience");
    EXPECT_TRUE(excludesUnlisted.takesValueFor(DitaValAction::kInclude));
    EXPECT_FALSE(excludesUnlisted.takesValueFor(DitaValAction::kExclude));
    EXPECT_FALSE(excludesUnlisted.takesValueFor(DitaValAction::kOther));
    const DitaValAttrValRejectFilter includesUnlisted(u"audience");
    EXPECT_FALSE(includesUnlisted.takesValueFor(DitaValAction::kInclude));
    EXPECT_TRUE(includesUnlisted.takesValueFor(DitaValAction::kExclude));
    EXPECT_FALSE(includesUnlisted.takesValueFor(DitaValAction::kOther));
}

TEST_F(DitaValAttrValFilterTest, ValuesAreComparedByCodeUnit) {
    const auto filter =
        withValues<DitaValAttrValAcceptFilter>(u"audience", {u"\u00E9", u"\U0001F600", u"(a b)"});
    EXPECT_EQ(answerAbout(*filter, "<p audience='\u00E9'/>"), "accept");
    EXPECT_EQ(answerAbout(*filter, "<p audience='e\u0301'/>"), "reject");
    EXPECT_EQ(answerAbout(*filter, "<p audience='\u00C9'/>"), "reject");
    EXPECT_EQ(answerAbout(*filter, "<p audience='\U0001F600'/>"), "accept");
    EXPECT_EQ(answerAbout(*filter, "<p audience='\U0001F601'/>"), "reject");
    EXPECT_EQ(answerAbout(*filter, "<p audience='(a b)'/>"), "reject");
}

TEST_F(DitaValAttrValFilterTest, TheAttributesNameIsComparedExactly) {
    const DitaValAttrValAcceptFilter filter(u"audience");
    EXPECT_EQ(answerAbout(filter, "<p Audience='a'/>"), "skip");
    EXPECT_EQ(answerAbout(filter, "<p d:audience='a' xmlns:d='urn:d'/>"), "skip");
    EXPECT_EQ(answerAbout(DitaValAttrValAcceptFilter(u"d:audience"),
                          "<p d:audience='a' xmlns:d='urn:d'/>"),
              "reject");
}

using DitaValExcludeFilterTest = XmlTest;

TEST_F(DitaValExcludeFilterTest, OneAttributeThatFallsIsEnough) {
    const auto filter = excludingX();
    EXPECT_EQ(answerAbout(*filter, "<p audience='a' platform='x'/>"), "accept");
    EXPECT_EQ(answerAbout(*filter, "<p audience='x' platform='a'/>"), "accept");
    EXPECT_EQ(answerAbout(*filter, "<p audience='x' platform='x'/>"), "accept");
    EXPECT_EQ(answerAbout(*filter, "<p audience='x a' platform='x'/>"), "accept");
    EXPECT_EQ(answerAbout(*filter, "<p audience='x'/>"), "accept");
    EXPECT_EQ(answerAbout(*filter, "<p platform='x'/>"), "accept");
}

TEST_F(DitaValExcludeFilterTest, OneTokenThatStaysSavesItsAttribute) {
    const auto filter = excludingX();
    EXPECT_EQ(answerAbout(*filter, "<p audience='x a' platform='b x'/>"), "skip");
    EXPECT_EQ(answerAbout(*filter, "<p audience='x a'/>"), "skip");
}

TEST_F(DitaValExcludeFilterTest, WhatHasNoRuleDoesNotCount) {
    const auto filter = excludingX();
    EXPECT_EQ(answerAbout(*filter, "<p/>"), "skip");
    EXPECT_EQ(answerAbout(*filter, "<p product='x' rev='x' props=' '/>"), "skip");
    EXPECT_EQ(answerAbout(*filter, "<p audience='' platform=''/>"), "skip");
    EXPECT_EQ(answerAbout(*filter, "<p audience=' '/>"), "accept");
}

TEST_F(DitaValExcludeFilterTest, NothingIsInherited) {
    const ParsedXml parsed(
        "<p id='a' audience='x'><p id='b'/><p id='c' audience='a'/><p id='d' platform='x'/></p>");
    EXPECT_EQ(idsOf(collectElements(parsed.root(), *excludingX())), "a d");
}

TEST_F(DitaValExcludeFilterTest, WithoutRulesNothingIsExcluded) {
    const auto filter = excludingNothing();
    EXPECT_EQ(answerAbout(*filter, "<p audience='x' platform=' '/>"), "skip");
    EXPECT_EQ(answerAbout(*filter, nullptr), "skip");
}

TEST_F(DitaValExcludeFilterTest, WhatIsNoElementCountsAsExcluded) {
    const ParsedXml parsed("<p>text</p>");
    EXPECT_EQ(answerAbout(*excludingX(), nullptr), "accept");
    EXPECT_EQ(answerAbout(*excludingX(), parsed.root()->getFirstChild()), "accept");
    EXPECT_EQ(answerAbout(*excludingX(), &parsed.document()), "accept");
}

struct DraftCase {
    const char* name;
    const char* before;
    const char* after;
};

constexpr DraftCase kDraftCases[] = {
    {"None", "<body><p/></body>", "<body><p/></body>"},
    {"Plain", "<body><draft-comment/></body>", R"(<body><draft-comment translate="no"/></body>)"},
    {"Root", "<draft-comment/>", R"(<draft-comment translate="no"/>)"},
    {"Nested",
     "<b><draft-comment><p><draft-comment/></p></draft-comment><c><draft-comment/></c></b>",
     R"(<b><draft-comment translate="no"><p><draft-comment translate="no"/></p></draft-comment>)"
     R"(<c><draft-comment translate="no"/></c></b>)"},
    {"Translated", R"(<b><draft-comment translate="yes"/></b>)",
     R"(<b><draft-comment translate="yes"/></b>)"},
    {"Empty", R"(<b><draft-comment translate=""/></b>)", R"(<b><draft-comment translate=""/></b>)"},
    {"BelowATranslatedOne", R"(<draft-comment translate="yes"><draft-comment/></draft-comment>)",
     R"(<draft-comment translate="yes"><draft-comment translate="no"/></draft-comment>)"},
    {"OtherNameOfItsClass", R"(<b><x class="- topic/draft-comment "/></b>)",
     R"(<b><x class="- topic/draft-comment "/></b>)"},
    {"ItsNameWithOtherClass", R"(<b><draft-comment class="- topic/p "/></b>)",
     R"(<b><draft-comment class="- topic/p " translate="no"/></b>)"},
    {"OtherCase", "<b><Draft-comment/><required-cleanup/></b>",
     "<b><Draft-comment/><required-cleanup/></b>"},
};

class MarkDraftCommentsTest : public XmlTest, public testing::WithParamInterface<DraftCase> {};

TEST_P(MarkDraftCommentsTest, GivesTranslateWhereItIsMissing) {
    const ParsedXml parsed(GetParam().before);
    markDraftComments(parsed.document());
    EXPECT_EQ(printed(*parsed.root()), GetParam().after);
}

TEST_P(MarkDraftCommentsTest, IsPartOfTheRemoval) {
    ExclusionFilterHolder::instance().reset(excludingNothing());
    const ParsedXml parsed(GetParam().before);
    removeExcludedElements(parsed.document());
    EXPECT_EQ(printed(*parsed.root()), GetParam().after);
}

TEST_P(MarkDraftCommentsTest, DoesNotHappenWithoutAProfile) {
    const ParsedXml parsed(GetParam().before);
    removeExcludedElements(parsed.document());
    EXPECT_EQ(printed(*parsed.root()), GetParam().before);
    ExclusionFilterHolder::instance().reset(nullptr);
    removeExcludedElements(parsed.document());
    EXPECT_EQ(printed(*parsed.root()), GetParam().before);
}

INSTANTIATE_TEST_SUITE_P(, MarkDraftCommentsTest, testing::ValuesIn(kDraftCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

using MarkedDraftCommentTest = XmlTest;

TEST_F(MarkedDraftCommentTest, KeepsWhatItsDtdSays) {
    const ParsedXml parsed(
        "<!DOCTYPE b [<!ATTLIST draft-comment translate CDATA 'yes'>]><b><draft-comment/></b>");
    markDraftComments(parsed.document());
    EXPECT_EQ(attribute(*parsed.root()->getFirstElementChild(), "translate"), "yes");
}

/// A run with a profile that excludes audience "x" and platform "x".
class RemoveExcludedElementsTest : public XmlTest {
protected:
    RemoveExcludedElementsTest() { ExclusionFilterHolder::instance().reset(excludingX()); }

    std::string withoutExcluded(std::string_view text) const {
        const ParsedXml parsed(text);
        removeExcludedElements(parsed.document());
        return printed(parsed.document());
    }
};

TEST_F(RemoveExcludedElementsTest, TakesOutWhatIsExcludedAndAllBelowIt) {
    EXPECT_EQ(withoutExcluded(R"(<b><p audience="x"><q/>text</p><p audience="a"/>)"
                              R"(<r><s platform="x"/></r></b>)"),
              R"(<b><p audience="a"/><r/></b>)");
}

TEST_F(RemoveExcludedElementsTest, LeavesWhatStandsAround) {
    EXPECT_EQ(withoutExcluded("<b>one<p audience='x'/>two<!--three--><p audience='x'/><?four 4?>"
                              "<p audience='x'/> <q/></b>"),
              "<b>onetwo<!--three--><?four 4?> <q/></b>");
}

TEST_F(RemoveExcludedElementsTest, TakesOutNeighboursAndTheLastChild) {
    EXPECT_EQ(withoutExcluded("<b><p audience='x'/><p audience='x'/><q/><p audience='x'/></b>"),
              "<b><q/></b>");
}

TEST_F(RemoveExcludedElementsTest, TakesNestedOnesApart) {
    const ParsedXml parsed(
        "<b id='b'><p id='p' audience='x'><q id='q'><r id='r' platform='x'><s id='s'/></r></q></p>"
        "<t id='t'/></b>");
    xercesc::DOMElement* const outer = parsed.byId("p");
    xercesc::DOMElement* const inner = parsed.byId("r");
    removeExcludedElements(parsed.document());
    EXPECT_EQ(printed(*parsed.root()), R"(<b id="b"><t id="t"/></b>)");
    EXPECT_EQ(outer->getParentNode(), nullptr);
    EXPECT_EQ(inner->getParentNode(), nullptr);
    EXPECT_EQ(printed(*outer), R"(<p audience="x" id="p"><q id="q"/></p>)");
    EXPECT_EQ(printed(*inner), R"(<r id="r" platform="x"><s id="s"/></r>)");
    EXPECT_EQ(outer->getOwnerDocument(), &parsed.document()) << "what was removed stays alive";
}

TEST_F(RemoveExcludedElementsTest, TheDocumentElementGoesLikeAnyOther) {
    const ParsedXml parsed(
        "<!--before--><map audience='x'><topicref platform='x'/><topicref/></map><?behind?>");
    removeExcludedElements(parsed.document());
    EXPECT_EQ(parsed.root(), nullptr);
    EXPECT_EQ(printed(parsed.document()), "<!--before--><?behind?>");
}

TEST_F(RemoveExcludedElementsTest, ADocumentWithoutARootStaysAsItIs) {
    const ParsedXml parsed("<!--before--><map audience='x'/>");
    removeExcludedElements(parsed.document());
    removeExcludedElements(parsed.document());
    EXPECT_EQ(parsed.root(), nullptr);
    EXPECT_EQ(printed(parsed.document()), "<!--before-->");
}

TEST_F(RemoveExcludedElementsTest, NoKindOfElementIsExempt) {
    EXPECT_EQ(withoutExcluded("<topic id='t'><title audience='x'>T</title><body audience='x'/>"
                              "<topic id='u' audience='x'/></topic>"),
              R"(<topic id="t"/>)");
}

TEST_F(RemoveExcludedElementsTest, ServesOneDocumentAfterTheOther) {
    const xercesc::DOMNodeFilter* const held = ExclusionFilterHolder::instance().filter();
    EXPECT_EQ(withoutExcluded("<b><p audience='x'/></b>"), "<b/>");
    EXPECT_EQ(withoutExcluded("<c><p audience='x'/></c>"), "<c/>");
    EXPECT_EQ(ExclusionFilterHolder::instance().filter(), held);
}

TEST_F(RemoveExcludedElementsTest, RulesForTranslateReachDraftComments) {
    AttributeFilters filters;
    filters.push_back(withValues<DitaValAttrValRejectFilter>(u"translate", {u"no"}));
    ExclusionFilterHolder::instance().reset(
        std::make_unique<DitaValExcludeFilter>(std::move(filters)));
    EXPECT_EQ(withoutExcluded(R"(<b><draft-comment>1</draft-comment><p translate="no"/>)"
                              R"(<draft-comment translate="yes">2</draft-comment><p/>)"
                              R"(<draft-comment translate="no">3</draft-comment></b>)"),
              R"(<b><draft-comment translate="yes">2</draft-comment><p/></b>)");
}

TEST_F(RemoveExcludedElementsTest, AProfileWithoutRulesRemovesNothing) {
    ExclusionFilterHolder::instance().reset(excludingNothing());
    EXPECT_EQ(withoutExcluded(R"(<b><p audience="x" platform=" "/><draft-comment/></b>)"),
              R"(<b><p audience="x" platform=" "/><draft-comment translate="no"/></b>)");
}

/// Filters that ask the profile of the run, a profile's own filter in the holder.
class ProfiledNodeFilterTest : public XmlTest {
protected:
    ProfiledNodeFilterTest() { ExclusionFilterHolder::instance().reset(excludingX()); }
};

TEST_F(ProfiledNodeFilterTest, ExcludedElementsDefineNoKeys) {
    const ParsedXml parsed(
        "<map><k id='a' keys='a' audience='x'><k id='b' keys='b'/></k><k id='c' keys='c'>"
        "<k id='d' keys='d' platform='x'/></k><k id='e' keys='e' audience='x a'/></map>");
    EXPECT_EQ(idsOf(collectElements(parsed.root(), KeyDefinitionNodeFilter())), "c e");
}

TEST_F(ProfiledNodeFilterTest, ExcludedMapReferencesAreNotFollowed) {
    const ParsedXml parsed(
        "<map><m id='a' href='http://h/a.ditamap' audience='x'><m id='b' "
        "href='http://h/b.ditamap'/>"
        "</m><m id='c' href='http://h/c.ditamap' audience='a'/></map>");
    EXPECT_EQ(idsOf(collectElements(parsed.root(), DitamapRefNodeFilter())), "c");
}

TEST_F(ProfiledNodeFilterTest, AnExcludedBooktitleIsNone) {
    EXPECT_EQ(answerAbout(BookTitleNodeFilter(), "<booktitle audience='x'/>"), "reject");
    EXPECT_EQ(answerAbout(BookTitleNodeFilter(), "<booktitle audience='x a'/>"), "accept");
    EXPECT_EQ(answerAbout(BookTitleNodeFilter(), "<title audience='x'/>"), "skip");
}

TEST_F(ProfiledNodeFilterTest, WithoutRulesNothingChanges) {
    ExclusionFilterHolder::instance().reset(excludingNothing());
    EXPECT_EQ(answerAbout(KeyDefinitionNodeFilter(), "<k keys='a' audience='x'/>"), "accept");
    EXPECT_EQ(answerAbout(DitamapRefNodeFilter(), "<m href='http://h/a.ditamap' audience='x'/>"),
              "accept");
    EXPECT_EQ(answerAbout(BookTitleNodeFilter(), "<booktitle audience='x'/>"), "accept");
}

}  // namespace
}  // namespace marrowpress
