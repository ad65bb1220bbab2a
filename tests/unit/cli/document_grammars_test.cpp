#include "cli/document_grammars.h"

#include <gtest/gtest.h>

#include "tests/support/observations.h"

namespace marrowpress {
namespace {

class DocumentGrammarsTest : public testing::Test {
protected:
    void read(const char* path, const char* root, DocumentGrammar grammar = DocumentGrammar::kOwn) {
        Observation met = observationOf(ObservationKind::kDocumentRead, path);
        met.element = root;
        met.code = static_cast<std::uint32_t>(grammar);
        grammars.observe(met);
    }

    void name(const char* from, const char* entity) {
        Observation met = observationOf(ObservationKind::kEntity, entity);
        met.detail = from;
        grammars.observe(met);
    }

    DocumentGrammars grammars;
};

TEST_F(DocumentGrammarsTest, DocumentsOfOneRootAndOneDtdAreOneUse) {
    name("/w/a.dita", "/d/topic.dtd");
    read("/w/a.dita", "topic");
    name("/w/b.dita", "/d/topic.dtd");
    read("/w/b.dita", "topic");
    name("/w/c.dita", "/e/topic.dtd");
    read("/w/c.dita", "topic");
    read("/w/b.dita", "topic");
    const std::vector<GrammarUse> uses = grammars.uses();
    ASSERT_EQ(uses.size(), 2U);
    EXPECT_EQ(uses[0].root, "topic");
    EXPECT_EQ(uses[0].dtd, "/d/topic.dtd");
    EXPECT_EQ(uses[0].documentCount, 2U);
    EXPECT_EQ(uses[0].firstDocument, "/w/a.dita");
    EXPECT_EQ(uses[1].dtd, "/e/topic.dtd");
}

TEST_F(DocumentGrammarsTest, ADocumentThatBreaksItsDtdHasItToo) {
    name("/w/a.dita", "/d/topic.dtd");
    read("/w/a.dita", "topic", DocumentGrammar::kInvalid);
    EXPECT_EQ(grammars.useOf("/w/a.dita").grammar, DocumentGrammar::kOwn);
    EXPECT_EQ(grammars.useOf("/w/a.dita").dtd, "/d/topic.dtd");
}

TEST_F(DocumentGrammarsTest, WhereADtdWasOnlyLookedForThereIsNone) {
    name("/w/a.dita", "/w/topic.dtd");
    read("/w/a.dita", "topic", DocumentGrammar::kNotFound);
    read("/w/b.dita", "topic", DocumentGrammar::kNoDoctype);
    EXPECT_EQ(grammars.useOf("/w/a.dita").grammar, DocumentGrammar::kNotFound);
    EXPECT_EQ(grammars.useOf("/w/a.dita").dtd, "");
    EXPECT_EQ(grammars.useOf("/w/b.dita").grammar, DocumentGrammar::kNoDoctype);
    EXPECT_EQ(grammars.uses().size(), 2U);
}

TEST_F(DocumentGrammarsTest, OfSeveralEntitiesTheDtdCounts) {
    name("/w/a.dita", "/d/local.ent");
    name("/w/a.dita", "/d/topic.dtd");
    name("/w/a.dita", "/d/other.dtd");
    name("/d/topic.dtd", "/d/topic.mod");
    read("/w/a.dita", "topic");
    EXPECT_EQ(grammars.useOf("/w/a.dita").dtd, "/d/topic.dtd");
}

TEST_F(DocumentGrammarsTest, ProfilesAndWhatWasNotReadAreLeftOut) {
    read("/w/p.ditaval", "val", DocumentGrammar::kNoDoctype);
    grammars.observe(observationOf(ObservationKind::kDocumentUnread, "/w/a.dita"));
    EXPECT_TRUE(grammars.uses().empty());
    EXPECT_EQ(grammars.useOf("/w/a.dita").documentCount, 0U);
}

}  // namespace
}  // namespace marrowpress
