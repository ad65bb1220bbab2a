#include "profiling/conditional_pis.h"

#include <gtest/gtest.h>

#include "support/text.h"
#include "support/work_counts.h"
#include "tests/support/xml_text.h"
#include "tests/unit/references/filter_answers.h"

namespace marrowpress {
namespace {

using xercesc::DOMNode;
using xercesc::DOMNodeFilter;

using CondPIFilterTest = XmlTest;

struct FilterCase {
    const char* data;
    DOMNodeFilter::FilterAction definition;
    DOMNodeFilter::FilterAction tag;
    DOMNodeFilter::FilterAction expression;
    DOMNodeFilter::FilterAction showAll;
};

constexpr FilterCase kFilterCases[] = {
    // as many tokens as needed, one less, more
    {"Condition A x y show z", kAccept, kReject, kReject, kReject},
    {"Condition A x y show", kReject, kReject, kReject, kReject},
    {"Condition A x y show z more", kAccept, kReject, kReject, kReject},
    {"Condstart A", kReject, kAccept, kReject, kReject},
    {"Condstart", kReject, kReject, kReject, kReject},
    {"Condstart A more", kReject, kAccept, kReject, kReject},
    {"Condend A", kReject, kAccept, kReject, kReject},
    {"Condend", kReject, kReject, kReject, kReject},
    {"BoolCondExpr \"A\" State 1", kReject, kReject, kAccept, kReject},
    {"BoolCondExpr \"A\" State", kReject, kReject, kReject, kReject},
    {"BoolCondExpr \"A\" or \"B\" State 1", kReject, kReject, kAccept, kReject},
    {"ShowAll True", kReject, kReject, kReject, kAccept},
    {"ShowAll", kReject, kReject, kReject, kReject},
    {"ShowAll True more", kReject, kReject, kReject, kAccept},
    {"ShowAll ShowAll x y show z", kReject, kReject, kReject, kAccept},
    // any number of blanks separates tokens, and nothing else does
    {"  Condition   A  x y  show z  ", kAccept, kReject, kReject, kReject},
    {"Condition\tA x y show z", kReject, kReject, kReject, kReject},
    {"Condition A\nx y show z", kReject, kReject, kReject, kReject},
    {"Condition \"A B\" y show z", kAccept, kReject, kReject, kReject},
    // names are exact
    {"condition A x y show z", kReject, kReject, kReject, kReject},
    {"Conditions A x y show z", kReject, kReject, kReject, kReject},
    {"condstart A", kReject, kReject, kReject, kReject},
    {"CondStart A", kReject, kReject, kReject, kReject},
    {"CondEnd A", kReject, kReject, kReject, kReject},
    {"Showall True", kReject, kReject, kReject, kReject},
    {"boolcondexpr \"A\" State 1", kReject, kReject, kReject, kReject},
    {"A Condition x y show z", kReject, kReject, kReject, kReject},
    {"", kReject, kReject, kReject, kReject},
    {"   ", kReject, kReject, kReject, kReject},
    // the ignored names are ignored by the definitions' filter alone
    {"Condition DITA-Comment x y show z", kReject, kReject, kReject, kReject},
    {"Condition DITA-Prolog x y show z", kReject, kReject, kReject, kReject},
    {"Condition domain-ui-d x y show z", kReject, kReject, kReject, kReject},
    {"Condition domain-xml-d x y show z", kReject, kReject, kReject, kReject},
    {"Condition dita-comment x y show z", kAccept, kReject, kReject, kReject},
    {"Condition DITA-Comments x y show z", kAccept, kReject, kReject, kReject},
    {"Condition DITA-Conref x y show z", kAccept, kReject, kReject, kReject},
    {"Condition QS8_TRACK_CHANGES_ADDED x y show z", kAccept, kReject, kReject, kReject},
    {"Condstart DITA-Comment", kReject, kAccept, kReject, kReject},
    {"Condend domain-ui-d", kReject, kAccept, kReject, kReject},
    {"ShowAll DITA-Prolog", kReject, kReject, kReject, kAccept},
    {"BoolCondExpr domain-xml-d State 1", kReject, kReject, kAccept, kReject},
};

TEST_F(CondPIFilterTest, TokensDecide) {
    const ParsedXml parsed("<p><?Qs data?></p>");
    DOMNode& instruction = *parsed.root()->getFirstChild();
    for (const FilterCase& expected : kFilterCases) {
        instruction.setNodeValue(toUtf16(std::string_view(expected.data)).c_str());
        EXPECT_EQ(CondPIFilter().acceptNode(&instruction), expected.definition) << expected.data;
        EXPECT_EQ(CondStartEndTagFilter().acceptNode(&instruction), expected.tag) << expected.data;
        EXPECT_EQ(CondExpressionFilter().acceptNode(&instruction), expected.expression)
            << expected.data;
        EXPECT_EQ(CondShowAllFilter().acceptNode(&instruction), expected.showAll) << expected.data;
    }
}

TEST_F(CondPIFilterTest, OtherNodesAreSkipped) {
    const ParsedXml parsed(
        "<p><?QS Condstart A?><?qs Condstart A?><?Q Condstart A?><?Qs2 Condstart A?>"
        "<!--Qs Condstart A-->Condstart A<Qs/><![CDATA[Condstart A]]></p>");
    std::size_t nodes = 0;
    for (const DOMNode* node = parsed.root()->getFirstChild(); node;
         node = node->getNextSibling()) {
        EXPECT_EQ(CondStartEndTagFilter().acceptNode(node), kSkip) << printed(*node);
        EXPECT_EQ(CondPIFilter().acceptNode(node), kSkip) << printed(*node);
        ++nodes;
    }
    EXPECT_EQ(nodes, 8U);
    EXPECT_EQ(CondStartEndTagFilter().acceptNode(&parsed.document()), kSkip);
    EXPECT_EQ(CondPIFilter().acceptNode(nullptr), kSkip);
    EXPECT_EQ(CondExpressionFilter().acceptNode(nullptr), kSkip);
    EXPECT_EQ(CondShowAllFilter().acceptNode(nullptr), kSkip);
}

TEST_F(CondPIFilterTest, OnlyDefinitionsIgnoreNames) {
    for (const std::u16string_view name : std::initializer_list<std::u16string_view>{
             u"DITA-Comment", u"DITA-Prolog", u"domain-ui-d", u"domain-xml-d"}) {
        EXPECT_TRUE(CondPIFilter().ignoresCondition(name));
        EXPECT_FALSE(CondStartEndTagFilter().ignoresCondition(name));
        EXPECT_FALSE(CondExpressionFilter().ignoresCondition(name));
        EXPECT_FALSE(CondShowAllFilter().ignoresCondition(name));
    }
    for (const std::u16string_view name : std::initializer_list<std::u16string_view>{
             u"", u"DITA-Conref", u"dita-prolog", u"DITA-Prolog ", u"Internal"}) {
        EXPECT_FALSE(CondPIFilter().ignoresCondition(name));
    }
}

TEST(IsSystemConditionTest, KnowsSixNames) {
    for (const std::u16string_view name : std::initializer_list<std::u16string_view>{
             u"QS8_TRACK_CHANGES_ADDED", u"QS8_TRACK_CHANGES_DELETED", u"QS8_SYSTEM_HIDEELEMENT",
             u"QS_PDF_Comments_Highlight", u"QS_PDF_Comments_Underline", u"DITA-Conref"}) {
        EXPECT_TRUE(isSystemCondition(name)) << toUtf8(name);
    }
    for (const std::u16string_view name : std::initializer_list<std::u16string_view>{
             u"", u"DITA-Comment", u"DITA-Prolog", u"domain-ui-d", u"dita-conref", u"DITA-Conref ",
             u"QS_PDF_COMMENTS_HIGHLIGHT", u"QS8_TRACK_CHANGES", u"Internal"}) {
        EXPECT_FALSE(isSystemCondition(name)) << toUtf8(name);
    }
}

TEST(ClassifyInstructionTest, GoesByTheFirstToken) {
    const std::pair<std::u16string_view, std::uint32_t> cases[] = {
        {u"ShowAll", 0},        {u"ShowAll True", 0}, {u"Condition", 1},   {u"Condition A", 1},
        {u"BoolCondExpr x", 2}, {u"Condstart A", 3},  {u"Condend A", 4},   {u"  Condend", 4},
        {u"showall True", 5},   {u"Conditions", 5},   {u"x Condition", 5}, {u"ShowAll\tTrue", 5}};
    for (const auto& [data, kind] : cases) {
        EXPECT_EQ(static_cast<std::uint32_t>(classifyInstruction(data)), kind) << toUtf8(data);
    }
}

TEST(ParseConditionTest, TakesNameAndState) {
    const struct {
        std::u16string_view data;
        std::u16string_view name;
        bool shown;
    } cases[] = {
        {u"Condition A x y show z", u"A", true},
        {u"Condition A x y hide z", u"A", false},
        {u"Condition A x y Show z", u"A", false},
        {u"Condition A x y shown z", u"A", false},
        {u"Condition A x show y z", u"A", false},
        {u"Condition A x y hide show", u"A", false},
        {u"Condition A x y show z more tokens", u"A", true},
        {u"  Condition   A  x y   show  z ", u"A", true},
        {u"Condition \"A B\" y show z", u"\"A", true},
    };
    for (const auto& expected : cases) {
        const std::optional<ConditionRecord> record = parseCondition(expected.data);
        ASSERT_TRUE(record) << toUtf8(expected.data);
        EXPECT_EQ(record->name, expected.name) << toUtf8(expected.data);
        EXPECT_EQ(record->shown, expected.shown) << toUtf8(expected.data);
        EXPECT_EQ(record->data, expected.data) << toUtf8(expected.data);
    }
    EXPECT_FALSE(parseCondition(u"Condition A x y show"));
    EXPECT_FALSE(parseCondition(u""));
}

TEST(ParseShowAllTest, IsOnForOneWord) {
    const std::pair<std::u16string_view, bool> cases[] = {
        {u"ShowAll True", true},       {u"ShowAll   True  ", true}, {u"ShowAll True False", true},
        {u"ShowAll true", false},      {u"ShowAll TRUE", false},    {u"ShowAll 1", false},
        {u"ShowAll False True", false}};
    for (const auto& [data, isOn] : cases) {
        const std::optional<ConditionRecord> record = parseShowAll(data);
        ASSERT_TRUE(record) << toUtf8(data);
        EXPECT_EQ(record->name, u"ShowAll");
        EXPECT_EQ(record->data, data);
        EXPECT_EQ(record->shown, isOn) << toUtf8(data);
    }
    EXPECT_FALSE(parseShowAll(u"ShowAll"));
    EXPECT_FALSE(parseShowAll(u""));
}

TEST(ParseExpressionTest, IsActiveForTwoStates) {
    const struct {
        std::u16string_view data;
        std::u16string_view text;
        bool active;
    } cases[] = {
        {u"BoolCondExpr \"A\" State 1", u"\"A\"", true},
        {u"BoolCondExpr \"A\" State 2", u"\"A\"", true},
        {u"BoolCondExpr \"A\" State 0", u"\"A\"", false},
        {u"BoolCondExpr \"A\" State 3", u"\"A\"", false},
        {u"BoolCondExpr \"A\" State 11", u"\"A\"", false},
        {u"BoolCondExpr \"A\" State 01", u"\"A\"", false},
        {u"BoolCondExpr \"A\" whatever 1", u"\"A\"", true},
        {u"BoolCondExpr  \"A\"or\"B\"  State  2  more", u"\"A\"or\"B\"", true},
        // cut off at its first blank
        {u"BoolCondExpr \"A\" or \"B\" State 1", u"\"A\"", false},
        {u"BoolCondExpr \"A\" or 1 State 0", u"\"A\"", true},
    };
    for (const auto& expected : cases) {
        const std::optional<CondExpressionRecord> record = parseExpression(expected.data);
        ASSERT_TRUE(record) << toUtf8(expected.data);
        EXPECT_EQ(record->text, expected.text) << toUtf8(expected.data);
        EXPECT_EQ(record->active, expected.active) << toUtf8(expected.data);
    }
    EXPECT_FALSE(parseExpression(u"BoolCondExpr \"A\" State"));
    EXPECT_FALSE(parseExpression(u"BoolCondExpr  State 1"));
    EXPECT_FALSE(parseExpression(u""));
}

class ConditionTableTest : public testing::Test {
protected:
    std::string contents() const {
        std::string text;
        for (const ConditionRecord& record : table.records()) {
            text += toUtf8(record.name) + "=" + toUtf8(record.data) + (record.shown ? "+" : "-");
        }
        return text;
    }

    ConditionTable table;
};

TEST_F(ConditionTableTest, KeepsTheOrderOfFirstInsertion) {
    EXPECT_EQ(table.find(u"A"), nullptr);
    for (const std::u16string_view name :
         std::initializer_list<std::u16string_view>{u"C", u"A", u"B"}) {
        table.put({std::u16string(name), u"first", true});
    }
    table.put({u"A", u"second", false});
    EXPECT_EQ(contents(), "C=first+A=second-B=first+");
    ASSERT_NE(table.find(u"A"), nullptr);
    EXPECT_EQ(table.find(u"A")->data, u"second");
    EXPECT_EQ(table.find(u"a"), nullptr);
}

/// What `catalog` holds, as text: definitions in their order, show-all, expression, summary.
std::string described(const ConditionCatalog& catalog) {
    std::string text;
    for (const ConditionRecord& record : catalog.conditions.records()) {
        text += "[" + toUtf8(record.data) + (record.shown ? "]+ " : "]- ");
    }
    if (catalog.showAllRecord) {
        text += "{" + toUtf8(catalog.showAllRecord->data) + "} ";
    }
    text += catalog.showAll ? "all " : "";
    if (catalog.expression) {
        text +=
            "<" + toUtf8(catalog.expression->text) + (catalog.expression->active ? ">+ " : ">- ");
    }
    return text + "= " + toUtf8(catalog.summaryExpression);
}

struct CatalogCase {
    const char* name;
    const char* xml;
    const char* catalog;
};

constexpr CatalogCase kCatalogCases[] = {
    {"NoInstructions", "<t><p/></t>", "= "},
    {"InFrontInsideAndBehind",
     "<?Qs Condition A x y show z?><t><p><?Qs Condition B x y hide z?></p></t>"
     "<?Qs Condition C x y show z?>",
     "[Condition A x y show z]+ [Condition B x y hide z]- [Condition C x y show z]+ "
     "= \"A\"or\"C\""},
    {"FirstDefinitionStands",
     "<?Qs Condition A x y hide 1?><?Qs Condition A x y show 2?><t><?Qs Condition A p q show 3?>"
     "</t>",
     "[Condition A x y hide 1]- = "},
    {"DataIsKeptAsWritten", "<?Qs Condition   A  x y show   z ?><t/>",
     "[Condition   A  x y show   z ]+ = \"A\""},
    {"WrongShapes",
     "<?Qs Condition A x y show?><?QS Condition B x y show z?><?qs Condition C x y show z?>"
     "<?other Condition D x y show z?><?Qs?><?Qs Unknown E x y show z?><t/>",
     "= "},
    {"IgnoredNames",
     "<?Qs Condition DITA-Prolog x y show z?><?Qs Condition DITA-Comment x y show z?>"
     "<?Qs Condition domain-ui-d x y show z?><?Qs Condition domain-xml-d x y show z?>"
     "<?Qs Condition A x y show z?><t/>",
     "[Condition A x y show z]+ = \"A\""},
    {"SystemConditionsAreRecordedOnly",
     "<?Qs Condition DITA-Conref x y show z?>"
     "<?Qs Condition QS8_TRACK_CHANGES_ADDED x y show z?>"
     "<?Qs Condition QS8_TRACK_CHANGES_DELETED x y show z?>"
     "<?Qs Condition QS8_SYSTEM_HIDEELEMENT x y show z?>"
     "<?Qs Condition QS_PDF_Comments_Highlight x y show z?>"
     "<?Qs Condition QS_PDF_Comments_Underline x y show z?><t/>",
     "[Condition DITA-Conref x y show z]+ [Condition QS8_TRACK_CHANGES_ADDED x y show z]+ "
     "[Condition QS8_TRACK_CHANGES_DELETED x y show z]+ "
     "[Condition QS8_SYSTEM_HIDEELEMENT x y show z]+ "
     "[Condition QS_PDF_Comments_Highlight x y show z]+ "
     "[Condition QS_PDF_Comments_Underline x y show z]+ = "},
    {"ShownOnesAreJoined",
     "<?Qs Condition A x y show z?><?Qs Condition DITA-Conref x y show z?>"
     "<?Qs Condition B x y hide z?><?Qs Condition C x y show z?><t/>",
     "[Condition A x y show z]+ [Condition DITA-Conref x y show z]+ [Condition B x y hide z]- "
     "[Condition C x y show z]+ = \"A\"or\"C\""},
    {"NothingShown", "<?Qs Condition A x y hide z?><t/>", "[Condition A x y hide z]- = "},
    {"ShowAllShowsHiddenOnesAndHidesTheExpression",
     "<?Qs BoolCondExpr \"A\" State 1?><?Qs Condition A x y hide z?>"
     "<?Qs Condition DITA-Conref x y show z?><?Qs Condition B x y show z?><t/><?Qs ShowAll True?>",
     "[Condition A x y hide z]- [Condition DITA-Conref x y show z]+ [Condition B x y show z]+ "
     "{ShowAll True} all = \"A\"or\"B\""},
    {"ShowAllWithAnotherValueReadsTheExpression",
     "<?Qs ShowAll False?><?Qs BoolCondExpr \"B\" State 1?><?Qs Condition A x y show z?><t/>",
     "[Condition A x y show z]+ {ShowAll False} <\"B\">+ = \"B\""},
    {"FirstShowAllCounts",
     "<?Qs ShowAll False?><?Qs ShowAll True?><?Qs Condition A x y hide z?><t/>",
     "[Condition A x y hide z]- {ShowAll False} = "},
    {"AShowAllWithoutValueIsNone",
     "<?Qs ShowAll?><?Qs ShowAll True?><?Qs Condition A x y hide z?><t/>",
     "[Condition A x y hide z]- {ShowAll True} all = \"A\""},
    {"FirstExpressionCounts",
     "<?Qs BoolCondExpr \"A\" State 0?><?Qs BoolCondExpr \"B\" State 1?>"
     "<?Qs Condition C x y show z?><t/>",
     "[Condition C x y show z]+ <\"A\">- = \"C\""},
    {"ActiveExpressionIsTheSummary",
     "<t><p><?Qs BoolCondExpr \"A\"and\"B\" State 2?></p></t><?Qs Condition C x y show z?>",
     "[Condition C x y show z]+ <\"A\"and\"B\">+ = \"A\"and\"B\""},
    {"AnExpressionOfThreeTokensIsNone",
     "<?Qs BoolCondExpr  State 1?><?Qs Condition C x y show z?><t/>",
     "[Condition C x y show z]+ = \"C\""},
};

class ConditionCatalogTest : public XmlTest, public testing::WithParamInterface<CatalogCase> {};

TEST_P(ConditionCatalogTest, IsRead) {
    const ParsedXml parsed(GetParam().xml);
    const std::string before = printed(parsed.document());
    ConditionCatalog catalog;
    loadConditionCatalog(catalog, *parsed.root());
    EXPECT_EQ(catalog.root, parsed.root());
    EXPECT_EQ(described(catalog), GetParam().catalog);
    EXPECT_EQ(printed(parsed.document()), before);
}

INSTANTIATE_TEST_SUITE_P(, ConditionCatalogTest, testing::ValuesIn(kCatalogCases),
                         [](const auto& example) { return std::string(example.param.name); });

using SummariseConditionsTest = testing::Test;

TEST_F(SummariseConditionsTest, AnActiveExpressionCountsEvenWhenItIsEmpty) {
    ConditionCatalog catalog;
    catalog.summaryExpression = u"old";
    catalog.conditions.put({u"A", u"", true});
    catalog.expression = {u"", true};
    summariseConditions(catalog);
    EXPECT_EQ(catalog.summaryExpression, u"");
    catalog.expression = {u"x", false};
    summariseConditions(catalog);
    EXPECT_EQ(catalog.summaryExpression, u"\"A\"");
}

TEST_F(SummariseConditionsTest, NamesStandAsTheyAre) {
    ConditionCatalog catalog;
    catalog.conditions.put({u"o", u"", true});
    catalog.conditions.put({u"\"", u"", true});
    catalog.conditions.put({u"\u00E4or", u"", true});
    summariseConditions(catalog);
    EXPECT_EQ(catalog.summaryExpression, u"\"o\"or\"\"\"or\"\u00E4or\"");
}

class ConditionCatalogsTest : public XmlTest {
protected:
    static std::size_t reads() { return WorkCounts::total().conditionReads; }
};

TEST_F(ConditionCatalogsTest, ASourceIsReadOnce) {
    const ParsedXml one("<?Qs Condition A x y show z?><t/>");
    const ParsedXml other("<t/>");
    const std::size_t before = reads();
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(ConditionCatalogs::instance().catalogOf(*one.root()).summaryExpression, u"\"A\"");
        EXPECT_EQ(ConditionCatalogs::instance().catalogOf(*other.root()).summaryExpression, u"");
    }
    EXPECT_EQ(reads() - before, 2U);
}

TEST_F(ConditionCatalogsTest, WhatIsForgottenIsReadAgain) {
    const ParsedXml document("<t/>");
    EXPECT_EQ(ConditionCatalogs::instance().catalogOf(*document.root()).summaryExpression, u"");
    document.root()->appendChild(document.document().createProcessingInstruction(
        kConditionTarget, u"Condition A x y show z"));
    ConditionCatalogs::instance().forget(nullptr);
    EXPECT_EQ(ConditionCatalogs::instance().catalogOf(*document.root()).summaryExpression, u"");
    ConditionCatalogs::instance().forget(document.root());
    EXPECT_EQ(ConditionCatalogs::instance().catalogOf(*document.root()).summaryExpression,
              u"\"A\"");
}

}  // namespace
}  // namespace marrowpress
