#include "profiling/condition_merge.h"

#include <gtest/gtest.h>

#include <deque>

#include "support/request_singleton.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

using xercesc::DOMNode;

/// The definitions of `state` in their order, then its expression, each in brackets.
std::string described(const ConditionMergeState& state) {
    std::string text;
    for (const ConditionRecord& record : state.conditions.records()) {
        text +=
            "[" + toUtf8(record.name) + (record.shown ? "+ " : "- ") + toUtf8(record.data) + "] ";
    }
    return text + (state.expression ? "<" + toUtf8(state.expression->text) + ">" : "none");
}

class ConditionMergeTest : public XmlTest {
protected:
    ConditionMergeTest() { state.mergeEnabled = true; }

    /// Merges a document, which lives as long as the test.
    const ParsedXml& merge(std::string_view xml) {
        documents_.emplace_back(xml);
        merge(documents_.back());
        return documents_.back();
    }

    void merge(const ParsedXml& parsed) {
        ConditionCatalog catalog;
        loadConditionCatalog(catalog, *parsed.root());
        mergeConditionCatalog(state, std::move(catalog));
    }

    ConditionMergeState state;

private:
    std::deque<ParsedXml> documents_;
};

TEST_F(ConditionMergeTest, NothingIsDoneUnlessEnabled) {
    state.mergeEnabled = false;
    merge("<?Qs Condition A x y show z?><t/>");
    EXPECT_EQ(described(state), "none");

    const ParsedXml source("<?Qs Condstart A?><t/>");
    const ParsedXml target("<o/>");
    state.renames[u"A"] = u"B";
    state.conditions.put({u"A", u"Condition A x y show z", true});
    state.expression = {u"x", true};
    carryConditionMarker(state, *source.document().getFirstChild(), *target.root());
    renameMergedMarker(state, *source.document().getFirstChild());
    writeConditionPIs(state, target.root());
    EXPECT_EQ(printed(target.document()), "<o/>");
    EXPECT_EQ(printed(source.document()), "<?Qs Condstart A?><t/>");
}

TEST_F(ConditionMergeTest, NothingClashesWithinTheFirstDocument) {
    merge(
        "<?Qs Condition A x y show z?><t/><?Qs Condition A x y hide z?>"
        "<?Qs Condition B x y hide z?>");
    EXPECT_EQ(described(state), "[A+ Condition A x y show z] [B- Condition B x y hide z] <\"A\">");
    EXPECT_EQ(ConditionRenamer::instance().replacementName(u"n"), u"QS_REPLACE_CONDITION_n_0");
}

TEST_F(ConditionMergeTest, WithoutAnEarlierDocumentARecordOfAKnownNameIsDropped) {
    state.conditions.put({u"A", u"Condition A x y show z", true});
    const ParsedXml& document = merge("<?Qs Condition A p q hide r?><t><?Qs Condstart A?></t>");
    EXPECT_EQ(described(state), "[A+ Condition A x y show z] <>");
    EXPECT_EQ(printed(*document.root()), "<t><?Qs Condstart A?></t>");
    EXPECT_TRUE(state.renames.empty());
}

TEST_F(ConditionMergeTest, AClashSplitsTheCondition) {
    merge("<?Qs Condition Internal x y show z?><t/>");
    const ParsedXml& second = merge(
        "<?Qs Condition Internal p q show r?><t><?Qs Condstart Internal?><p/>"
        "<?Qs Condend Internal?></t>");
    EXPECT_EQ(described(state),
              "[Internal+ Condition Internal x y show z] "
              "[QS_REPLACE_CONDITION_Internal_0+ Condition QS_REPLACE_CONDITION_Internal_0 p q "
              "show r] <(\"Internal\")or(\"QS_REPLACE_CONDITION_Internal_0\")>");
    EXPECT_EQ(printed(*second.root()),
              "<t><?Qs Condstart QS_REPLACE_CONDITION_Internal_0?><p/>"
              "<?Qs Condend QS_REPLACE_CONDITION_Internal_0?></t>");
    EXPECT_EQ(state.renames.size(), 1U);
    EXPECT_EQ(state.renames.at(u"Internal"), u"QS_REPLACE_CONDITION_Internal_0");
}

TEST_F(ConditionMergeTest, AHiddenOneTakesTheStateOfTheShownOne) {
    merge("<?Qs Condition A x y show z?><t/>");
    merge("<?Qs Condition A p q hide r?><t/>");
    EXPECT_EQ(described(state),
              "[A+ Condition A x y show z] [QS_REPLACE_CONDITION_A_0+ Condition "
              "QS_REPLACE_CONDITION_A_0 p q show r] <\"A\">");
}

TEST_F(ConditionMergeTest, AShownOneTakesTheStateOfTheHiddenOne) {
    merge("<?Qs Condition A x y hide z?><t/>");
    merge("<?Qs Condition A p q show r?><t/>");
    // Its document's summary was made before.
    EXPECT_EQ(described(state),
              "[A- Condition A x y hide z] [QS_REPLACE_CONDITION_A_0- Condition "
              "QS_REPLACE_CONDITION_A_0 p q hide r] <()or(\"QS_REPLACE_CONDITION_A_0\")>");
}

TEST_F(ConditionMergeTest, ThreeDocumentsCompareWithTheFirst) {
    merge("<?Qs Condition A 1 y show z?><t/>");
    merge("<?Qs Condition A 2 y hide z?><?Qs Condition B 2 y show z?><t/>");
    merge(
        "<?Qs Condition B 3 y hide z?><?Qs Condition A 3 y show z?><?Qs Condition C 3 y show z?>"
        "<t/>");
    EXPECT_EQ(described(state),
              "[A+ Condition A 1 y show z] "
              "[QS_REPLACE_CONDITION_A_0+ Condition QS_REPLACE_CONDITION_A_0 2 y show z] "
              "[B+ Condition B 2 y show z] "
              "[QS_REPLACE_CONDITION_B_1+ Condition QS_REPLACE_CONDITION_B_1 3 y show z] "
              "[QS_REPLACE_CONDITION_A_2+ Condition QS_REPLACE_CONDITION_A_2 3 y show z] "
              "[C+ Condition C 3 y show z] "
              "<((\"A\")or(\"B\"))or(\"QS_REPLACE_CONDITION_A_2\"or\"C\")>");
    // What an earlier document renamed stays renamed for tags beside later roots.
    EXPECT_EQ(state.renames.at(u"A"), u"QS_REPLACE_CONDITION_A_2");
    EXPECT_EQ(state.renames.at(u"B"), u"QS_REPLACE_CONDITION_B_1");
}

TEST_F(ConditionMergeTest, ADataWithRunsOfBlanksKeepsThemOnlyWithoutAClash) {
    merge("<?Qs Condition  A  x  y  show  z?><t/>");
    merge("<?Qs Condition  A  x  y  show  z  ?><?Qs Condition  B  x  y  show  z?><t/>");
    EXPECT_EQ(described(state),
              "[A+ Condition  A  x  y  show  z] [QS_REPLACE_CONDITION_A_0+ Condition "
              "QS_REPLACE_CONDITION_A_0 x y show z] [B+ Condition  B  x  y  show  z] "
              "<(\"A\")or(\"QS_REPLACE_CONDITION_A_0\"or\"B\")>");
}

TEST_F(ConditionMergeTest, MoreThanSixTokensAreShifted) {
    merge("<?Qs Condition A x y show z?><?Qs Condition B x y show z?><t/>");
    merge("<?Qs Condition A x y hide 5 6 7?><?Qs Condition B x y show 5 6 7?><t/>");
    EXPECT_EQ(described(state),
              "[A+ Condition A x y show z] [B+ Condition B x y show z] "
              "[QS_REPLACE_CONDITION_A_0+ Condition QS_REPLACE_CONDITION_A_0 x y hide 5 show 5] "
              "[QS_REPLACE_CONDITION_B_1+ Condition QS_REPLACE_CONDITION_B_1 x y show 5 6 7] "
              "<(\"A\"or\"B\")or(\"QS_REPLACE_CONDITION_B_1\")>");
}

TEST_F(ConditionMergeTest, ASystemConditionIsReplacedByTheLaterOneInTheEarlierState) {
    merge("<?Qs Condition DITA-Conref 1 y show z?><?Qs Condition A 1 y show z?><t/>");
    const ParsedXml& second = merge(
        "<?Qs Condition DITA-Conref 2 y hide z?><?Qs Condition A 2 y show z?>"
        "<t><?Qs Condstart DITA-Conref more?></t>");
    EXPECT_EQ(described(state),
              "[DITA-Conref+ Condition DITA-Conref 2 y show z] [A+ Condition A 1 y show z] "
              "[QS_REPLACE_CONDITION_A_0+ Condition QS_REPLACE_CONDITION_A_0 2 y show z] "
              "<(\"A\")or(\"QS_REPLACE_CONDITION_A_0\")>");
    // Renamed to itself, a tag loses its further tokens.
    EXPECT_EQ(printed(*second.root()), "<t><?Qs Condstart DITA-Conref?></t>");
    EXPECT_EQ(state.renames.at(u"DITA-Conref"), u"DITA-Conref");
}

TEST_F(ConditionMergeTest, AFirstDocumentWithoutConditionsLeavesEmptyBrackets) {
    merge("<t/>");
    EXPECT_EQ(described(state), "<>");
    EXPECT_TRUE(state.expression->active);
    merge("<?Qs Condition A x y show z?><t/>");
    EXPECT_EQ(described(state), "[A+ Condition A x y show z] <()or(\"A\")>");
    EXPECT_TRUE(state.expression->active);
}

TEST_F(ConditionMergeTest, DocumentsWithoutExpressionChangeNothing) {
    merge("<?Qs Condition A x y show z?><t/>");
    merge("<?Qs Condition B x y hide z?><t/>");
    merge("<t/>");
    EXPECT_EQ(described(state), "[A+ Condition A x y show z] [B- Condition B x y hide z] <\"A\">");
}

TEST_F(ConditionMergeTest, BracketsGrowOnTheLeft) {
    merge("<?Qs BoolCondExpr D1 State 1?><t/>");
    merge("<?Qs BoolCondExpr D2 State 2?><t/>");
    merge("<t/>");
    merge("<?Qs BoolCondExpr D3 State 1?><t/>");
    EXPECT_EQ(described(state), "<((D1)or(D2))or(D3)>");
}

TEST_F(ConditionMergeTest, OnlyTheFirstPlaceInAnExpressionIsRenamed) {
    merge("<?Qs Condition A x y show z?><t/>");
    merge(
        "<?Qs Condition A x y show z?>"
        "<?Qs BoolCondExpr A(\"AA\")and\"A\"and(NOT\"A\")or'A' State 1?><t/>");
    EXPECT_EQ(described(state),
              "[A+ Condition A x y show z] [QS_REPLACE_CONDITION_A_0+ Condition "
              "QS_REPLACE_CONDITION_A_0 x y show z] "
              "<(\"A\")or(A(\"AA\")and\"QS_REPLACE_CONDITION_A_0\"and(NOT\"A\")or'A')>");
}

TEST_F(ConditionMergeTest, ADocumentMergedTwiceHasItsTagsRenamedOnce) {
    const ParsedXml document(
        "<?Qs Condition A x y show z?><t><?Qs Condstart A?>text<?Qs Condend A?></t>");
    merge(document);
    merge(document);
    EXPECT_EQ(printed(*document.root()),
              "<t><?Qs Condstart QS_REPLACE_CONDITION_A_0?>text"
              "<?Qs Condend QS_REPLACE_CONDITION_A_0?></t>");
    merge(document);
    EXPECT_EQ(printed(*document.root()),
              "<t><?Qs Condstart QS_REPLACE_CONDITION_A_0?>text"
              "<?Qs Condend QS_REPLACE_CONDITION_A_0?></t>");
    EXPECT_EQ(described(state),
              "[A+ Condition A x y show z] "
              "[QS_REPLACE_CONDITION_A_0+ Condition QS_REPLACE_CONDITION_A_0 x y show z] "
              "[QS_REPLACE_CONDITION_A_1+ Condition QS_REPLACE_CONDITION_A_1 x y show z] "
              "<((\"A\")or(\"QS_REPLACE_CONDITION_A_0\"))or(\"QS_REPLACE_CONDITION_A_1\")>");
}

TEST_F(ConditionMergeTest, ADocumentThatHasAReplacementNameClashesLikeAnyOther) {
    merge("<?Qs Condition A x y show z?><t/>");
    merge("<?Qs Condition A x y show z?><?Qs Condition QS_REPLACE_CONDITION_A_0 p q show z?><t/>");
    ASSERT_EQ(state.conditions.records().size(), 3U);
    EXPECT_EQ(state.conditions.records()[2].name,
              u"QS_REPLACE_CONDITION_QS_REPLACE_CONDITION_A_0_1");
}

TEST_F(ConditionMergeTest, AReplacementTakesThePlaceOfARecordThatHasItsName) {
    merge("<?Qs Condition A 1 y show z?><?Qs Condition QS_REPLACE_CONDITION_A_0 1 y hide z?><t/>");
    merge("<?Qs Condition A 2 y show z?><t/>");
    EXPECT_EQ(described(state),
              "[A+ Condition A 1 y show z] [QS_REPLACE_CONDITION_A_0+ Condition "
              "QS_REPLACE_CONDITION_A_0 2 y show z] <(\"A\")or(\"QS_REPLACE_CONDITION_A_0\")>");
}

TEST_F(ConditionMergeTest, ClearKeepsTheNames) {
    merge("<?Qs Condition A x y show z?><t/>");
    merge("<?Qs Condition A x y show z?><t/>");
    state.clear();
    EXPECT_EQ(described(state), "none");
    EXPECT_EQ(state.conditions.find(u"A"), nullptr);
    EXPECT_EQ(state.renames.size(), 1U);
    EXPECT_TRUE(state.mergeEnabled);
}

using ConditionRenamerTest = XmlTest;

TEST_F(ConditionRenamerTest, CountsWhatItReplaces) {
    ConditionRenamer& renamer = ConditionRenamer::instance();
    EXPECT_EQ(renamer.replacementName(u"Internal"), u"QS_REPLACE_CONDITION_Internal_0");
    EXPECT_EQ(renamer.replacementName(u"Internal"), u"QS_REPLACE_CONDITION_Internal_1");
    for (const std::u16string_view name : std::initializer_list<std::u16string_view>{
             u"QS8_TRACK_CHANGES_ADDED", u"QS8_TRACK_CHANGES_DELETED", u"QS8_SYSTEM_HIDEELEMENT",
             u"QS_PDF_Comments_Highlight", u"QS_PDF_Comments_Underline", u"DITA-Conref"}) {
        EXPECT_EQ(renamer.replacementName(name), name);
    }
    EXPECT_EQ(renamer.replacementName(u"DITA-Comment"), u"QS_REPLACE_CONDITION_DITA-Comment_2");
    EXPECT_EQ(renamer.replacementName(u""), u"QS_REPLACE_CONDITION__3");
    for (int number = 4; number < 10; ++number) {
        renamer.replacementName(u"x");
    }
    EXPECT_EQ(renamer.replacementName(u"x"), u"QS_REPLACE_CONDITION_x_10");
}

TEST(ConditionRenamerLifeTest, EveryRequestCountsAnew) {
    for (int request = 0; request < 2; ++request) {
        const RecordingHost host;
        {
            const XmlSession session;
            EXPECT_EQ(ConditionRenamer::instance().replacementName(u"A"),
                      u"QS_REPLACE_CONDITION_A_0");
        }
        EXPECT_EQ(RequestSingleton<ConditionRenamer>::existing(), nullptr);
    }
}

TEST(RewriteConditionStateTest, ReplacesTheLastTokenButOne) {
    const struct {
        std::u16string_view data;
        bool shown;
        std::u16string_view rewritten;
    } cases[] = {
        {u"Condition A x y show z", false, u"Condition A x y hide z"},
        {u"Condition A x y hide z", true, u"Condition A x y show z"},
        {u"Condition A x y other z", true, u"Condition A x y show z"},
        {u"  Condition   A x  y show z ", false, u"Condition A x y hide z"},
        {u"Condition A x y show 5 6", false, u"Condition A x y show hide 5"},
        {u"Condition A x y show 5 6 7", true, u"Condition A x y show 5 show 5"},
        {u"Condition  A x y show", false, u"Condition  A x y show"},
        {u"", false, u""},
    };
    for (const auto& expected : cases) {
        ConditionRecord record{u"A", std::u16string(expected.data), !expected.shown};
        rewriteConditionState(record, expected.shown);
        EXPECT_EQ(record.data, expected.rewritten) << toUtf8(expected.data);
    }
}

TEST(RewriteConditionNameTest, KeepsWhatStandsBehindTheName) {
    const struct {
        std::u16string_view data;
        std::u16string_view rewritten;
    } cases[] = {
        {u"Condition A x y show z", u"Condition New x y show z"},
        {u"Condition   A   x  y show z  ", u"Condition New x y show z"},
        {u"Condition A x y show z 6 7", u"Condition New x y show z 6 7"},
        {u"Condition  A x y show", u"Condition  A x y show"},
        {u"", u""},
    };
    for (const auto& expected : cases) {
        ConditionRecord record{u"A", std::u16string(expected.data), true};
        rewriteConditionName(record, u"New");
        EXPECT_EQ(record.data, expected.rewritten) << toUtf8(expected.data);
    }
}

TEST(RenameInExpressionTest, ReplacesTheFirstQuotedName) {
    const struct {
        std::u16string_view expression;
        std::u16string_view renamed;
    } cases[] = {
        {u"\"A\"", u"\"New\""},
        {u"\"B\"or\"A\"or\"A\"", u"\"B\"or\"New\"or\"A\""},
        {u"A", u"A"},
        {u"\"A", u"\"A"},
        {u"\"AB\"or\"a\"", u"\"AB\"or\"a\""},
        {u"", u""},
        {u"\"\"A\"\"", u"\"\"New\"\""},
        {u"\"B\"A\"C\"", u"\"B\"New\"C\""},
    };
    for (const auto& expected : cases) {
        std::u16string expression(expected.expression);
        renameInExpression(u"New", u"A", expression);
        EXPECT_EQ(expression, expected.renamed) << toUtf8(expected.expression);
    }
}

using TagRenamesTest = XmlTest;

TEST_F(TagRenamesTest, ChangesTagsOfThatNameBelowTheRoot) {
    const ParsedXml parsed(
        "<?Qs Condstart A?><t><?Qs Condstart A more?><p><?Qs  Condend   A?><?Qs Condstart B x?>"
        "<?Qs Condstart a?><?QS Condstart A?><?Qs Condition A x y show z?><?Qs ShowAll A?>"
        "<?Qs BoolCondExpr A x 1?><?Qs Condstart?></p></t><?Qs Condend A?>");
    TagRenames renames;
    renames.add(u"A", u"New");
    renames.apply(*parsed.root());
    EXPECT_EQ(printed(parsed.document()),
              "<?Qs Condstart A?><t><?Qs Condstart New?><p><?Qs Condend New?><?Qs Condstart B x?>"
              "<?Qs Condstart a?><?QS Condstart A?><?Qs Condition A x y show z?><?Qs ShowAll A?>"
              "<?Qs BoolCondExpr A x 1?><?Qs Condstart?></p></t><?Qs Condend A?>");
}

TEST_F(TagRenamesTest, LaterNamesReplaceEarlierOnes) {
    const ParsedXml parsed(
        "<t><?Qs Condstart A?><?Qs Condstart B?><?Qs Condstart C?><?Qs Condstart D?></t>");
    TagRenames renames;
    renames.add(u"A", u"B");
    renames.add(u"B", u"E");  // of that name are both by now
    renames.add(u"C", u"A");
    renames.apply(*parsed.root());
    EXPECT_EQ(printed(*parsed.root()),
              "<t><?Qs Condstart E?><?Qs Condstart E?><?Qs Condstart A?><?Qs Condstart D?></t>");
}

TEST_F(TagRenamesTest, ANameThatIsReplacedByItselfLosesWhatStandsBehindIt) {
    const ParsedXml parsed("<t><?Qs Condstart A more?></t>");
    TagRenames renames;
    renames.add(u"A", u"A");
    renames.apply(*parsed.root());
    EXPECT_EQ(printed(*parsed.root()), "<t><?Qs Condstart A?></t>");
}

TEST_F(TagRenamesTest, WithoutNamesNothingIsLookedAt) {
    const ParsedXml parsed("<t><?Qs Condstart A more?></t>");
    TagRenames().apply(*parsed.root());
    EXPECT_EQ(printed(*parsed.root()), "<t><?Qs Condstart A more?></t>");
}

class ConditionMarkerTest : public ConditionMergeTest {
protected:
    /// Hands each child of `xml`'s root to `carryConditionMarker`; the output then.
    std::string carried(const ParsedXml& source) {
        const ParsedXml target("<o><kept/></o>");
        for (DOMNode* node = source.root()->getFirstChild(); node; node = node->getNextSibling()) {
            carryConditionMarker(state, *node, *target.root());
        }
        return printed(*target.root());
    }
};

TEST_F(ConditionMarkerTest, TagsAreCarriedWithTwoTokens) {
    state.renames[u"A"] = u"New";
    const ParsedXml source(
        "<t><?Qs Condstart A x?><?Qs  Condend  B  y?><?Qs Condition A x y show z?><?Qs ShowAll "
        "True?>"
        "<?Qs BoolCondExpr \"A\" State 1?><?QS Condstart A?><!--c-->text<e/><?Qs Condend?></t>");
    EXPECT_EQ(carried(source), "<o><kept/><?Qs Condstart New?><?Qs Condend B?></o>");
    // The source is changed as well.
    EXPECT_EQ(printed(*source.root()),
              "<t><?Qs Condstart New?><?Qs Condend B?><?Qs Condition A x y show z?>"
              "<?Qs ShowAll True?><?Qs BoolCondExpr \"A\" State 1?><?QS Condstart A?><!--c-->text"
              "<e/><?Qs Condend?></t>");
}

TEST_F(ConditionMarkerTest, NamesAreLookedUpOnce) {
    state.renames[u"A"] = u"B";
    state.renames[u"B"] = u"C";
    EXPECT_EQ(carried(ParsedXml("<t><?Qs Condstart A?></t>")), "<o><kept/><?Qs Condstart B?></o>");
}

TEST_F(ConditionMarkerTest, RenamingChangesTagsAlone) {
    const ParsedXml source(
        "<t><?Qs Condstart A x?><?Qs Condend   B?><?Qs Condition A x y show z?><?Qs Condstart?>"
        "<?QS Condstart A?><e/></t>");
    for (DOMNode* node = source.root()->getFirstChild(); node; node = node->getNextSibling()) {
        renameConditionMarker(u"New", *node);
    }
    EXPECT_EQ(printed(*source.root()),
              "<t><?Qs Condstart New?><?Qs Condend New?><?Qs Condition A x y show z?>"
              "<?Qs Condstart?><?QS Condstart A?><e/></t>");
}

TEST_F(ConditionMarkerTest, AMarkerAboutToBeCopiedGetsItsCurrentName) {
    state.renames[u"A"] = u"New";
    const ParsedXml source("<t><?Qs Condstart A x?><?Qs Condend B y?><?Qs ShowAll A?><e/></t>");
    for (DOMNode* node = source.root()->getFirstChild(); node; node = node->getNextSibling()) {
        renameMergedMarker(state, *node);
    }
    EXPECT_EQ(printed(*source.root()),
              "<t><?Qs Condstart New?><?Qs Condend B?><?Qs ShowAll A?><e/></t>");
}

using WriteConditionPIsTest = ConditionMergeTest;

TEST_F(WriteConditionPIsTest, StandInFrontOfTheRootDefinitionsFirst) {
    const ParsedXml target("<?first?><!--second--><o><e/></o><!--behind-->");
    merge("<?Qs Condition B  x y show z?><?Qs ShowAll True?><?Qs Condition A x y hide z?><t/>");
    writeConditionPIs(state, target.root());
    EXPECT_EQ(printed(target.document()),
              "<?first?><!--second--><?Qs Condition B  x y show z?><?Qs Condition A x y hide z?>"
              "<?Qs BoolCondExpr \"B\"or\"A\" State 1?><o><e/></o><!--behind-->");
}

TEST_F(WriteConditionPIsTest, WithoutAnExpressionTwoBlanksStandInARow) {
    const ParsedXml target("<o/>");
    merge("<t/>");
    writeConditionPIs(state, target.root());
    EXPECT_EQ(printed(target.document()), "<?Qs BoolCondExpr  State 1?><o/>");
    EXPECT_EQ(CondExpressionFilter().acceptNode(target.document().getFirstChild()),
              xercesc::DOMNodeFilter::FILTER_REJECT);
}

TEST_F(WriteConditionPIsTest, AnExpressionThatIsNotActiveIsWrittenWithZero) {
    const ParsedXml target("<o/>");
    state.expression = {u"x", false};
    writeConditionPIs(state, target.root());
    EXPECT_EQ(printed(target.document()), "<?Qs BoolCondExpr x State 0?><o/>");
}

TEST_F(WriteConditionPIsTest, WithoutDocumentsOrRootNothingIsWritten) {
    const ParsedXml target("<o/>");
    writeConditionPIs(state, target.root());
    EXPECT_EQ(printed(target.document()), "<o/>");
    merge("<t/>");
    writeConditionPIs(state, nullptr);
    EXPECT_EQ(printed(target.document()), "<o/>");
}

}  // namespace
}  // namespace marrowpress
