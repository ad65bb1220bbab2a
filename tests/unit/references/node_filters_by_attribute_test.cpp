#include "dom/element_walker.h"
#include "tests/unit/references/filter_answers.h"

namespace marrowpress {
namespace {

struct AnswerCase {
    const char* name;
    FilterMaker make;
    const char* xml;
    const char* answer;
};

std::unique_ptr<xercesc::DOMNodeFilter> makeTagFilter() {
    return std::make_unique<ElemTagBasedElementNodeFilter>(u"fn");
}

std::unique_ptr<xercesc::DOMNodeFilter> makeValueFilter() {
    return std::make_unique<AttrBasedElementNodeFilter>(u"print", u"no");
}

std::unique_ptr<xercesc::DOMNodeFilter> makeEmptyValueFilter() {
    return std::make_unique<AttrBasedElementNodeFilter>(u"print", u"");
}

constexpr AnswerCase kAnswerCases[] = {
    {"TagEqual", makeTagFilter, "<fn/>", "accept"},
    {"TagEqualWithForeignClass", makeTagFilter, "<fn class='- topic/ph '/>", "accept"},
    {"TagOther", makeTagFilter, "<ph/>", "skip"},
    {"TagOtherWithFittingClass", makeTagFilter, "<x class='- topic/fn '/>", "skip"},
    {"TagInUpperCase", makeTagFilter, "<FN/>", "skip"},
    {"TagLonger", makeTagFilter, "<fnref/>", "skip"},
    {"TagWithPrefix", makeTagFilter, "<d:fn xmlns:d='d'/>", "skip"},
    {"DitabaseEqual", makeFilter<DitabaseNodeFilter>, "<dita/>", "accept"},
    {"DitabaseEqualWithClass", makeFilter<DitabaseNodeFilter>, "<dita class='- x/y '/>", "accept"},
    {"DitabaseInUpperCase", makeFilter<DitabaseNodeFilter>, "<DITA/>", "skip"},
    {"DitabaseOther", makeFilter<DitabaseNodeFilter>, "<ditamap/>", "skip"},
    {"ValueEqual", makeValueFilter, "<x print='no'/>", "accept"},
    {"ValueOther", makeValueFilter, "<x print='yes'/>", "skip"},
    {"ValueInUpperCase", makeValueFilter, "<x print='NO'/>", "skip"},
    {"ValueIsNotTrimmed", makeValueFilter, "<x print=' no'/>", "skip"},
    {"ValueLonger", makeValueFilter, "<x print='no no'/>", "skip"},
    {"ValueEmpty", makeValueFilter, "<x print=''/>", "skip"},
    {"ValueMissing", makeValueFilter, "<x/>", "skip"},
    {"ValueOfOtherAttribute", makeValueFilter, "<x toc='no'/>", "skip"},
    {"EmptyValueMissing", makeEmptyValueFilter, "<x/>", "accept"},
    {"EmptyValueEmpty", makeEmptyValueFilter, "<x print=''/>", "accept"},
    {"EmptyValueGiven", makeEmptyValueFilter, "<x print='no'/>", "skip"},
    {"IdGiven", makeFilter<IdAttrContainingNodeFilter>, "<x id='a'/>", "accept"},
    {"IdBlank", makeFilter<IdAttrContainingNodeFilter>, "<x id=' '/>", "accept"},
    {"IdEmpty", makeFilter<IdAttrContainingNodeFilter>, "<x id=''/>", "skip"},
    {"IdMissing", makeFilter<IdAttrContainingNodeFilter>, "<x ID='a' xml:id='a'/>", "skip"},
    {"ConrefGiven", makeFilter<ConrefAttrContainingNodeFilter>, "<x conref='a'/>", "accept"},
    {"ConrefEmpty", makeFilter<ConrefAttrContainingNodeFilter>, "<x conref=''/>", "skip"},
    {"ConrefMissing", makeFilter<ConrefAttrContainingNodeFilter>,
     "<x conkeyref='a' conrefend='a'/>", "skip"},
    {"ConkeyrefGiven", makeFilter<ConkeyrefAttrContainingNodeFilter>, "<x conkeyref='a'/>",
     "accept"},
    {"ConkeyrefEmpty", makeFilter<ConkeyrefAttrContainingNodeFilter>, "<x conkeyref=''/>", "skip"},
    {"ConkeyrefMissing", makeFilter<ConkeyrefAttrContainingNodeFilter>,
     "<x conref='a' keyref='a'/>", "skip"},
    {"KeyrefGiven", makeFilter<KeyrefAttrContainingNodeFilter>, "<x keyref='a'/>", "accept"},
    {"KeyrefEmpty", makeFilter<KeyrefAttrContainingNodeFilter>, "<x keyref=''/>", "skip"},
    {"KeyrefMissing", makeFilter<KeyrefAttrContainingNodeFilter>,
     "<x conkeyref='a' datakeyref='a' keys='a'/>", "skip"},
    {"KeyrefMarked", makeFilter<KeyrefAttrContainingNodeFilter>,
     "<x keyref='--qs-mwpp-ignore-keyref'/>", "skip"},
    {"KeyrefNearlyMarked", makeFilter<KeyrefAttrContainingNodeFilter>,
     "<x keyref='--qs-mwpp-ignore-keyref '/>", "accept"},
    {"KeyrefMarkedInOtherCase", makeFilter<KeyrefAttrContainingNodeFilter>,
     "<x keyref='--QS-mwpp-ignore-keyref'/>", "accept"},
    {"KeysGiven", makeFilter<KeyDefinitionNodeFilter>, "<x keys='a b'/>", "accept"},
    {"KeysBlank", makeFilter<KeyDefinitionNodeFilter>, "<x keys='  '/>", "accept"},
    {"KeysEmpty", makeFilter<KeyDefinitionNodeFilter>, "<x keys=''/>", "skip"},
    {"KeysMissing", makeFilter<KeyDefinitionNodeFilter>, "<keydef keyref='a' key='a'/>", "skip"},
    {"DirectRefByHref", makeFilter<DirectRefAttrContainingNodeFilter>, "<x href='a'/>", "accept"},
    {"DirectRefByConref", makeFilter<DirectRefAttrContainingNodeFilter>, "<x conref='a'/>",
     "accept"},
    {"DirectRefByConrefend", makeFilter<DirectRefAttrContainingNodeFilter>, "<x conrefend='a'/>",
     "accept"},
    {"DirectRefByXtrf", makeFilter<DirectRefAttrContainingNodeFilter>, "<x xtrf='a'/>", "accept"},
    {"DirectRefsEmpty", makeFilter<DirectRefAttrContainingNodeFilter>,
     "<x href='' conref='' conrefend='' xtrf=''/>", "skip"},
    {"DirectRefsMissing", makeFilter<DirectRefAttrContainingNodeFilter>,
     "<x keyref='a' conkeyref='a' data='a' value='a' HREF='a' xtrc='a' copy-to='a'/>", "skip"},
};

class AttributeAndTagNodeFilterTest : public XmlTest,
                                      public testing::WithParamInterface<AnswerCase> {};

TEST_P(AttributeAndTagNodeFilterTest, Answers) {
    EXPECT_EQ(answerAbout(*GetParam().make(), GetParam().xml), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(, AttributeAndTagNodeFilterTest, testing::ValuesIn(kAnswerCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

using KeyrefAttrContainingNodeFilterTest = XmlTest;

TEST_F(KeyrefAttrContainingNodeFilterTest, GoesOnBelowAMarkedElement) {
    const ParsedXml parsed(
        "<p><term id='a' keyref='--qs-mwpp-ignore-keyref'><ph id='b' keyref='k'/></term>"
        "<ph id='c' keyref='k'/></p>");
    EXPECT_EQ(idsOf(collectElements(parsed.root(), KeyrefAttrContainingNodeFilter())), "b c");
}

using DirectRefAttrContainingNodeFilterTest = XmlTest;

TEST_F(DirectRefAttrContainingNodeFilterTest, BitsAreInTheOrderOfTheAttributes) {
    EXPECT_EQ(DirectRefAttrContainingNodeFilter::bits(),
              (std::array<std::uint32_t, 4>{1, 2, 4, 8}));
}

TEST_F(DirectRefAttrContainingNodeFilterTest, MaskHoldsTheBitOfEachAttribute) {
    const DirectRefAttrContainingNodeFilter filter;
    constexpr std::array<const char16_t*, 4> kAttributes{u"href", u"conref", u"conrefend", u"xtrf"};
    for (std::uint32_t mask = 0; mask < 16; ++mask) {
        const ParsedXml parsed("<x href='' conref='' conrefend='' xtrf=''/>");
        for (std::size_t index = 0; index < kAttributes.size(); ++index) {
            if (mask & (1U << index)) {
                parsed.root()->setAttribute(kAttributes[index], u"a.dita");
            }
        }
        EXPECT_EQ(filter.mask(*parsed.root()), mask);
        EXPECT_EQ(answerAbout(filter, parsed.root()), mask == 0 ? "skip" : "accept") << mask;
    }
}

TEST_F(DirectRefAttrContainingNodeFilterTest, MaskReadsAMissingAttributeAsEmpty) {
    const ParsedXml parsed("<x conrefend=' '/>");
    EXPECT_EQ(DirectRefAttrContainingNodeFilter().mask(*parsed.root()), 4U);
}

}  // namespace
}  // namespace marrowpress
