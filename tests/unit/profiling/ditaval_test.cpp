#include "profiling/ditaval.h"

#include <algorithm>
#include <vector>

#include "dom/element_walker.h"
#include "support/text.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using Props = std::vector<std::string>;

/// A profile in which "@" stands for the name of an attribute.
std::string profileText(const Props& props, std::string_view attributeName = "audience") {
    std::string text = "<val>";
    for (const std::string& prop : props) {
        for (const char unit : prop) {
            text += unit == '@' ? std::string(attributeName) : std::string(1, unit);
        }
    }
    return text + "</val>";
}

std::unique_ptr<DitaValExcludeFilter> readWith(DitaValReader& reader, std::string_view profile) {
    const ParsedXml parsed(profile);
    reader.readDefaultAction(parsed.document());
    reader.readAttributeRules(parsed.document());
    reader.readValueRules(parsed.document());
    return reader.buildExcludeFilter();
}

std::unique_ptr<DitaValExcludeFilter> filterOf(std::string_view profile) {
    DitaValReader reader;
    return readWith(reader, profile);
}

/// The ids of those elements of `content` that `filter` excludes.
std::string excludedIn(std::string_view content, const DitaValExcludeFilter& filter) {
    const ParsedXml parsed("<body>" + std::string(content) + "</body>");
    return idsOf(collectElements(parsed.root(), filter));
}

/// Which of these the profile excludes, each with a value of its own for one attribute.
std::string excludedBy(std::string_view profile, std::string_view attributeName = "audience") {
    struct Sample {
        const char* id;
        const char* value;
    };
    constexpr Sample kSamples[] = {{"empty", ""}, {"blank", "  "},  {"a", "a"}, {"b", "b"},
                                   {"ab", "a b"}, {"aa", " a  a "}, {"A", "A"}};
    std::string content = "<p id='none'/>";
    for (const Sample& sample : kSamples) {
        content += std::string("<p id='") + sample.id + "' " + std::string(attributeName) + "='" +
                   sample.value + "'/>";
    }
    return excludedIn(content, *filterOf(profile));
}

// What falls under each kind of rule.
constexpr const char* kNothing = "";
constexpr const char* kUnlisted = "blank a b ab aa A";  // all values excluded, none listed
constexpr const char* kUnlistedButA = "blank b A";      // all values excluded, "a" listed
constexpr const char* kBlank = "blank";                 // all values included, none listed
constexpr const char* kListedA = "blank a aa";          // all values included, "a" listed
constexpr const char* kListedAb = "blank a b ab aa";    // all values included, "a", "b" listed

constexpr const char* kDefaultExclude = "<prop action='exclude'/>";
constexpr const char* kDefaultInclude = "<prop action='include'/>";
constexpr const char* kInclude = "<prop att='@' action='include'/>";
constexpr const char* kExclude = "<prop att='@' action='exclude'/>";
constexpr const char* kIncludeA = "<prop att='@' val='a' action='include'/>";
constexpr const char* kExcludeA = "<prop att='@' val='a' action='exclude'/>";
constexpr const char* kIncludeB = "<prop att='@' val='b' action='include'/>";
constexpr const char* kExcludeB = "<prop att='@' val='b' action='exclude'/>";

struct RuleCase {
    const char* name;
    Props props;
    const char* audience;  // what falls by "audience", which a default of exclude reaches
    const char* rev;       // what falls by "rev", which it doesn't reach
};

class EffectiveRuleTest : public XmlTest, public testing::WithParamInterface<RuleCase> {
protected:
    /// The props in every order in which they can stand.
    static std::vector<Props> orders() {
        Props props = GetParam().props;
        std::sort(props.begin(), props.end());
        std::vector<Props> all;
        do {
            all.push_back(props);
        } while (std::next_permutation(props.begin(), props.end()));
        return all;
    }
};

TEST_P(EffectiveRuleTest, HoldsInEveryOrderOfTheProps) {
    for (const Props& props : orders()) {
        EXPECT_EQ(excludedBy(profileText(props, "audience"), "audience"), GetParam().audience)
            << profileText(props, "audience");
        EXPECT_EQ(excludedBy(profileText(props, "rev"), "rev"), GetParam().rev)
            << profileText(props, "rev");
    }
}

const RuleCase kRuleCases[] = {
    {"NoProp", {}, kNothing, kNothing},
    {"DefaultIncludeAlone", {kDefaultInclude}, kNothing, kNothing},
    {"IncludedValue", {kIncludeA}, kNothing, kNothing},
    {"ExcludedValue", {kExcludeA}, kListedA, kListedA},
    {"ExcludedValueUnderDefaultInclude", {kDefaultInclude, kExcludeA}, kListedA, kListedA},
    {"TwoExcludedValues", {kExcludeA, kExcludeB}, kListedAb, kListedAb},
    {"IncludedAndExcludedValue", {kExcludeA, kIncludeB}, kListedA, kListedA},
    {"ValueBothWays", {kExcludeA, kIncludeA}, kListedA, kListedA},

    {"Included", {kInclude}, kBlank, kBlank},
    {"IncludedWithExcludedValue", {kInclude, kExcludeA}, kListedA, kListedA},
    {"IncludedWithIncludedValue", {kInclude, kIncludeA}, kBlank, kBlank},
    {"IncludedWithTwoExcludedValues", {kInclude, kExcludeA, kExcludeB}, kListedAb, kListedAb},
    {"IncludedWithValueBothWays", {kInclude, kIncludeA, kExcludeA}, kListedA, kListedA},

    {"Excluded", {kExclude}, kUnlisted, kUnlisted},
    {"ExcludedWithIncludedValue", {kExclude, kIncludeA}, kUnlistedButA, kUnlistedButA},
    {"ExcludedWithExcludedValue", {kExclude, kExcludeA}, kUnlisted, kUnlisted},
    {"ExcludedWithValueBothWays", {kExclude, kIncludeA, kExcludeA}, kUnlistedButA, kUnlistedButA},
    {"ExcludedWithTwoIncludedValues", {kExclude, kIncludeA, kIncludeB}, "blank A", "blank A"},

    {"DefaultExclude", {kDefaultExclude}, kUnlisted, kNothing},
    {"DefaultBothWays", {kDefaultInclude, kDefaultExclude}, kUnlisted, kNothing},
    {"DefaultExcludeWithIncludedValue", {kDefaultExclude, kIncludeA}, kUnlistedButA, kUnlistedButA},
    {"DefaultExcludeWithExcludedValue", {kDefaultExclude, kExcludeA}, kUnlisted, kNothing},
    {"DefaultExcludeWithTwoIncludedValues",
     {kDefaultExclude, kIncludeA, kIncludeB},
     "blank A",
     "blank A"},
    {"DefaultExcludeWithValueBothWays",
     {kDefaultExclude, kIncludeA, kExcludeA},
     kUnlistedButA,
     kUnlistedButA},

    {"DefaultExcludeAndIncluded", {kDefaultExclude, kInclude}, kBlank, kBlank},
    {"DefaultExcludeAndIncludedWithExcludedValue",
     {kDefaultExclude, kInclude, kExcludeA},
     kListedA,
     kListedA},
    {"DefaultExcludeAndIncludedWithIncludedValue",
     {kDefaultExclude, kInclude, kIncludeA},
     kBlank,
     kBlank},
    {"DefaultExcludeAndIncludedWithValueBothWays",
     {kDefaultExclude, kInclude, kIncludeA, kExcludeA},
     kListedA,
     kListedA},

    {"DefaultExcludeAndExcluded", {kDefaultExclude, kExclude}, kUnlisted, kUnlisted},
    {"DefaultExcludeAndExcludedWithIncludedValue",
     {kDefaultExclude, kExclude, kIncludeA},
     kUnlistedButA,
     kUnlistedButA},
    {"DefaultExcludeAndExcludedWithExcludedValue",
     {kDefaultExclude, kExclude, kExcludeA},
     kUnlisted,
     kUnlisted},
};

INSTANTIATE_TEST_SUITE_P(, EffectiveRuleTest, testing::ValuesIn(kRuleCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

struct ProfileCase {
    const char* name;
    const char* profile;
    const char* excluded;
};

class DitaValReaderProfileTest : public XmlTest, public testing::WithParamInterface<ProfileCase> {};

TEST_P(DitaValReaderProfileTest, Excludes) {
    EXPECT_EQ(excludedBy(GetParam().profile), GetParam().excluded);
}

constexpr ProfileCase kOrderCases[] = {
    {"FirstAttributeRuleIncludes",
     "<val><prop att='audience' action='include'/><prop att='audience' action='exclude'/></val>",
     kBlank},
    {"FirstAttributeRuleExcludes",
     "<val><prop att='audience' action='exclude'/><prop att='audience' action='include'/></val>",
     kUnlisted},
    {"FirstAttributeRuleHasNoEffect",
     "<val><prop att='audience' action='flag'/><prop att='audience' action='exclude'/>"
     "<prop att='audience' action='include'/></val>",
     kUnlisted},
    {"FirstAttributeRuleWithoutAction",
     "<val><prop att='audience'/><prop att='audience' action='include'/>"
     "<prop att='audience' action='exclude'/></val>",
     kBlank},
};

INSTANTIATE_TEST_SUITE_P(Order, DitaValReaderProfileTest, testing::ValuesIn(kOrderCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

constexpr ProfileCase kPlaceCases[] = {
    {"AnyRoot", "<any><prop att='audience' action='exclude'/></any>", kUnlisted},
    {"RootIsTheProp", "<prop att='audience' action='exclude'/>", kUnlisted},
    {"RootIsTheDefault", "<prop action='exclude'/>", kUnlisted},
    {"RootIsTheValue", "<prop att='audience' val='a' action='exclude'/>", kListedA},
    {"AnyDepth",
     "<val><x><y/><y><prop att='audience' action='exclude'/></y></x>"
     "<z><prop att='audience' val='a' action='include'/></z></val>",
     kUnlistedButA},
    {"DefaultAtAnyDepth", "<val><x/><x><y><prop action='exclude'/></y></x></val>", kUnlisted},
    {"OtherElements",
     "<val><style-conflict foreground-conflict-color='red'/><revprop action='exclude'/>"
     "<revprop att='audience' action='exclude'/>"
     "<revprop att='audience' val='a' action='exclude'/></val>",
     kNothing},
    {"OtherCase", "<val><Prop action='exclude'/><PROP att='audience' action='exclude'/></val>",
     kNothing},
    {"Prefix",
     "<val xmlns:d='urn:d'><d:prop action='exclude'/><d:prop att='audience' action='exclude'/>"
     "<d:prop att='audience' val='a' action='exclude'/></val>",
     kNothing},
    {"NamespaceWithoutPrefix",
     "<val xmlns='urn:d'><prop att='audience' val='a' action='exclude'/></val>", kListedA},
    {"BelowAPrefixedProp",
     "<val xmlns:d='urn:d'><d:prop><prop att='audience' val='a' action='exclude'/></d:prop></val>",
     kListedA},
    {"BelowOtherCase", "<val><Prop><prop action='exclude'/></Prop></val>", kUnlisted},
    {"InACommentOrText",
     "<val><!--<prop action='exclude'/>--><![CDATA[<prop action='exclude'/>]]></val>", kNothing},
    {"ValueAlone", "<val><prop val='a' action='exclude'/></val>", kNothing},
    {"ValueAloneIsNoDefault", "<val><prop val='audience' action='exclude'/></val>", kNothing},
    {"ValueWithEmptyAttribute", "<val><prop att='' val='a' action='exclude'/></val>", kNothing},
    {"EmptyIsAbsentForTheDefault", "<val><prop att='' val='' action='exclude'/></val>", kUnlisted},
    {"EmptyIsAbsentForTheAttribute", "<val><prop att='audience' val='' action='exclude'/></val>",
     kUnlisted},
    {"BlankAttributeIsNotAbsent", "<val><prop att=' ' action='exclude'/></val>", kNothing},
    {"BlankValueIsNotAbsent", "<val><prop att='audience' val=' ' action='exclude'/></val>", kBlank},
    {"AttributeInOtherCase", "<val><prop att='Audience' action='exclude'/></val>", kNothing},
    {"AttributeWithBlanks", "<val><prop att=' audience' action='exclude'/></val>", kNothing},
    {"ValueInOtherCase", "<val><prop att='audience' val='A' action='exclude'/></val>", "blank A"},
    {"ValueIsOneToken", "<val><prop att='audience' val='a b' action='exclude'/></val>", kBlank},
    {"ValueIsNotTrimmed", "<val><prop att='audience' val=' a' action='exclude'/></val>", kBlank},
    {"OtherAttributesOfThePropAreNotRead",
     "<val><prop name='audience' attr='audience' value='a' actions='exclude'/></val>", kNothing},
    {"AttributesInOtherCaseAreNotRead", "<val><prop Att='audience' Action='exclude'/></val>",
     kNothing},
};

INSTANTIATE_TEST_SUITE_P(Place, DitaValReaderProfileTest, testing::ValuesIn(kPlaceCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

// A pass looks into a prop only when it takes the prop itself.
constexpr ProfileCase kNestingCases[] = {
    {"ValueInValue",
     "<val><prop att='audience' val='a' action='exclude'>"
     "<prop att='audience' val='b' action='exclude'/></prop></val>",
     kListedAb},
    {"ValueInValueWithoutEffect",
     "<val><prop att='platform' val='x' action='flag'>"
     "<prop att='audience' val='a' action='exclude'/></prop></val>",
     kListedA},
    {"AttributeInAttribute",
     "<val><prop att='platform' action='flag'><prop att='audience' action='exclude'/></prop></val>",
     kUnlisted},
    {"AttributeInAttributeComesSecond",
     "<val><prop att='audience' action='exclude'><prop att='audience' action='include'/></prop>"
     "</val>",
     kUnlisted},
    {"ValueInAttribute",
     "<val><prop att='audience' action='include'>"
     "<prop att='audience' val='a' action='exclude'/></prop></val>",
     kBlank},
    {"AttributeInValue",
     "<val><prop att='audience' val='a' action='exclude'>"
     "<prop att='audience' action='exclude'/></prop></val>",
     kListedA},
    {"AttributeInDefault",
     "<val><prop action='exclude'><prop att='audience' action='include'/></prop></val>", kUnlisted},
    {"ValueInDefault",
     "<val><prop action='exclude'><prop att='audience' val='a' action='include'/></prop></val>",
     kUnlisted},
    {"DefaultInAttribute",
     "<val><prop att='platform' action='exclude'><prop action='exclude'/></prop></val>", kNothing},
    {"DefaultInValue",
     "<val><prop att='platform' val='x' action='exclude'><prop action='exclude'/></prop></val>",
     kNothing},
    {"DefaultInDefaultInclude", "<val><prop action='include'><prop action='exclude'/></prop></val>",
     kNothing},
    {"AllInAValueAlone",
     "<val><prop val='a' action='exclude'><prop action='exclude'/>"
     "<prop att='audience' action='exclude'/><prop att='audience' val='a' action='exclude'/>"
     "</prop></val>",
     kNothing},
    {"DeepInAPropThatIsNotTaken",
     "<val><prop action='include'><x><y><prop att='audience' action='exclude'/></y></x></prop>"
     "</val>",
     kNothing},
    {"BehindAPropThatIsNotTaken",
     "<val><prop action='include'><prop action='exclude'/></prop>"
     "<prop att='audience' val='a' action='exclude'/></val>",
     kListedA},
    {"BelowARootThatIsNotTaken",
     "<prop action='flag'><prop action='exclude'/><prop att='audience' action='exclude'/></prop>",
     kNothing},
};

INSTANTIATE_TEST_SUITE_P(Nesting, DitaValReaderProfileTest, testing::ValuesIn(kNestingCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

/// Spellings of an action that are neither of the two words.
class OtherActionTest : public XmlTest, public testing::WithParamInterface<const char*> {
protected:
    static std::string prop(std::string_view attributes) {
        return "<prop " + std::string(attributes) + " " + GetParam() + "/>";
    }
    static std::string excludedByProps(const std::string& props) {
        return excludedBy("<val>" + props + "</val>");
    }
};

TEST_P(OtherActionTest, IsNoDefault) {
    EXPECT_EQ(excludedByProps(prop("")), kNothing);
    EXPECT_EQ(excludedByProps(prop("") + "<prop action='exclude'/>"), kUnlisted);
}

TEST_P(OtherActionTest, IsNoRuleForAnAttribute) {
    EXPECT_EQ(excludedByProps(prop("att='audience'")), kNothing);
    EXPECT_EQ(excludedByProps("<prop action='exclude'/>" + prop("att='audience'")), kUnlisted);
}

TEST_P(OtherActionTest, LeavesAnAttributeToTheNextRule) {
    EXPECT_EQ(excludedByProps(prop("att='audience'") + "<prop att='audience' action='exclude'/>"),
              kUnlisted);
    EXPECT_EQ(excludedByProps(prop("att='audience'") + "<prop att='audience' action='include'/>"),
              kBlank);
}

TEST_P(OtherActionTest, IsNoRuleForAValue) {
    const std::string value = prop("att='audience' val='a'");
    EXPECT_EQ(excludedByProps(value), kNothing);
    EXPECT_EQ(excludedByProps("<prop att='audience' action='include'/>" + value), kBlank);
    EXPECT_EQ(excludedByProps("<prop att='audience' action='exclude'/>" + value), kUnlisted);
    EXPECT_EQ(excludedByProps("<prop action='exclude'/>" + value), kUnlisted);
    EXPECT_EQ(
        excludedBy("<val><prop action='exclude'/>" + prop("att='rev' val='a'") + "</val>", "rev"),
        kNothing);
}

TEST_P(OtherActionTest, HasTheCodeOfItsOwn) {
    const ParsedXml parsed(prop(""));
    EXPECT_EQ(readAction(*parsed.root()), DitaValAction::kOther);
}

INSTANTIATE_TEST_SUITE_P(, OtherActionTest,
                         testing::Values("", "action=''", "action='flag'", "action='passthrough'",
                                         "action='Exclude'", "action='EXCLUDE'", "action='Include'",
                                         "action=' exclude'", "action='exclude '",
                                         "action='excludes'", "action='includ'",
                                         "Action='exclude'"));

TEST(DitaValActionTest, HasFixedCodes) {
    EXPECT_EQ(static_cast<int>(DitaValAction::kInclude), 0);
    EXPECT_EQ(static_cast<int>(DitaValAction::kExclude), 1);
    EXPECT_EQ(static_cast<int>(DitaValAction::kOther), 2);
}

using ReadActionTest = XmlTest;

TEST_F(ReadActionTest, KnowsTwoWords) {
    EXPECT_EQ(readAction(*ParsedXml("<prop action='include'/>").root()), DitaValAction::kInclude);
    EXPECT_EQ(readAction(*ParsedXml("<prop action='exclude'/>").root()), DitaValAction::kExclude);
}

using CreateAttrValFilterTest = XmlTest;

TEST_F(CreateAttrValFilterTest, IncludedValuesAreIncludedUnlessListed) {
    const auto filter = createAttrValFilter(u"audience", DitaValAction::kInclude);
    EXPECT_NE(dynamic_cast<const DitaValAttrValRejectFilter*>(filter.get()), nullptr);
    EXPECT_EQ(filter->acceptNode(ParsedXml("<p audience='a'/>").root()),
              xercesc::DOMNodeFilter::FILTER_ACCEPT);
    EXPECT_EQ(filter->acceptNode(ParsedXml("<p platform='a'/>").root()),
              xercesc::DOMNodeFilter::FILTER_SKIP);
}

TEST_F(CreateAttrValFilterTest, ExcludedValuesAreExcludedUnlessListed) {
    const auto filter = createAttrValFilter(u"audience", DitaValAction::kExclude);
    EXPECT_NE(dynamic_cast<const DitaValAttrValAcceptFilter*>(filter.get()), nullptr);
    EXPECT_EQ(filter->acceptNode(ParsedXml("<p audience='a'/>").root()),
              xercesc::DOMNodeFilter::FILTER_REJECT);
    EXPECT_EQ(filter->acceptNode(ParsedXml("<p platform='a'/>").root()),
              xercesc::DOMNodeFilter::FILTER_SKIP);
}

TEST_F(CreateAttrValFilterTest, AnyOtherActionMakesNone) {
    EXPECT_EQ(createAttrValFilter(u"audience", DitaValAction::kOther), nullptr);
}

using DitaValReaderTest = XmlTest;

constexpr const char* kOneOfEachAttribute =
    "<p id='audience' audience='x'/><p id='props' props='x'/><p id='platform' platform='x'/>"
    "<p id='product' product='x'/><p id='otherprops' otherprops='x'/><p id='rev' rev='x'/>"
    "<p id='deliveryTarget' deliveryTarget='x'/><p id='Audience' Audience='x'/>"
    "<p id='print' print='x'/><p id='importance' importance='x'/><p id='status' status='x'/>";

TEST_F(DitaValReaderTest, ExclusionByDefaultReachesFiveAttributes) {
    EXPECT_EQ(excludedIn(kOneOfEachAttribute, *filterOf("<val><prop action='exclude'/></val>")),
              "audience props platform product otherprops");
}

TEST_F(DitaValReaderTest, ExclusionByDefaultLeavesTheRulesThatThereAre) {
    EXPECT_EQ(
        excludedIn(kOneOfEachAttribute, *filterOf("<val><prop att='props' action='include'/>"
                                                  "<prop att='product' val='x' action='include'/>"
                                                  "<prop att='rev' val='y' action='include'/>"
                                                  "<prop att='status' action='exclude'/>"
                                                  "<prop action='exclude'/></val>")),
        "audience platform otherprops rev status");
}

TEST_F(DitaValReaderTest, RulesMayNameAnyAttribute) {
    EXPECT_EQ(excludedIn(kOneOfEachAttribute,
                         *filterOf("<val><prop att='print' val='x' action='exclude'/>"
                                   "<prop att='id' val='rev' action='exclude'/>"
                                   "<prop att='nowhere' val='x' action='exclude'/></val>")),
              "rev print");
}

TEST_F(DitaValReaderTest, RulesOfOneAttributeLeaveTheOthersAlone) {
    const auto filter = filterOf(
        "<val><prop att='audience' val='x' action='exclude'/>"
        "<prop att='platform' action='exclude'/>"
        "<prop att='platform' val='y' action='include'/></val>");
    EXPECT_EQ(excludedIn("<p id='1' audience='x'/><p id='2' platform='x'/><p id='3' audience='y'/>"
                         "<p id='4' platform='y'/><p id='5' product='x'/>",
                         *filter),
              "1 2");
}

TEST_F(DitaValReaderTest, ADocumentWithoutPropsGivesAFilterThatExcludesNothing) {
    for (const char* const profile : {"<val/>", "<val><revprop val='1'/></val>"}) {
        const auto filter = filterOf(profile);
        ASSERT_NE(filter, nullptr);
        EXPECT_EQ(excludedIn(kOneOfEachAttribute, *filter), "");
        EXPECT_EQ(filter->acceptNode(nullptr), xercesc::DOMNodeFilter::FILTER_SKIP)
            << "there is no attribute to ask about";
    }
}

TEST_F(DitaValReaderTest, ForgetsWhatItGaveAway) {
    DitaValReader reader;
    const auto first = readWith(reader,
                                "<val><prop action='exclude'/><prop att='rev' action='exclude'/>"
                                "<prop att='audience' val='y' action='include'/></val>");
    const auto second = readWith(reader, "<val><prop att='rev' val='y' action='exclude'/></val>");
    EXPECT_EQ(excludedIn(kOneOfEachAttribute, *first),
              "audience props platform product otherprops rev");
    EXPECT_EQ(excludedIn(kOneOfEachAttribute, *second), "");
    EXPECT_EQ(excludedIn("<p id='y' rev='y'/>", *second), "y");
}

TEST_F(DitaValReaderTest, ReportsNothing) {
    filterOf("<val><prop/><prop val='x'/><prop att='audience' action='flag'/></val>");
    EXPECT_TRUE(host.console().empty());
    EXPECT_TRUE(host.progress().empty());
}

TEST_F(DitaValReaderTest, LeavesTheDocumentAsItIs) {
    constexpr const char* kProfile =
        R"(<val><prop action="exclude"/><prop action="include" att="props" val="x"/></val>)";
    const ParsedXml parsed(kProfile);
    DitaValReader reader;
    reader.readDefaultAction(parsed.document());
    reader.readAttributeRules(parsed.document());
    reader.readValueRules(parsed.document());
    EXPECT_NE(reader.buildExcludeFilter(), nullptr);
    EXPECT_EQ(printed(*parsed.root()), kProfile);
}

}  // namespace
}  // namespace marrowpress
