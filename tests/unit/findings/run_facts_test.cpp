#include "findings/run_facts.h"

#include <gtest/gtest.h>

#include "tests/support/observations.h"
#include "tests/support/run_facts_of.h"

namespace marrowpress {
namespace {

class RunFactsTest : public testing::Test {
protected:
    RunFacts facts;
};

TEST_F(RunFactsTest, OfSeveralDefinitionsTheOneThatSaysMostIsKept) {
    takeKey(facts, "k", KeyState::kShadowed, "", 1);
    EXPECT_EQ(facts.keyFact("k")->state, KeyState::kShadowed);
    takeKey(facts, "k", KeyState::kLost, "", 2);
    takeKey(facts, "k", KeyState::kExcluded, "", 3);
    EXPECT_EQ(facts.keyFact("k")->state, KeyState::kExcluded);
    EXPECT_EQ(facts.keyFact("k")->place, (FindingPlace{"/w/keys.ditamap", 3, 3}));
    EXPECT_TRUE(facts.keys().empty());
    takeKey(facts, "k", KeyState::kEffective, "", 4);
    takeKey(facts, "k", KeyState::kExcluded, "", 5);
    EXPECT_EQ(facts.keyFact("k")->place.line, 4U);
    EXPECT_EQ(facts.keyFact("k")->element, "keydef");
    EXPECT_EQ(facts.keys(), std::vector<std::string>{"k"});
    EXPECT_EQ(facts.keyFact("K"), nullptr);
}

TEST_F(RunFactsTest, KeysThatCountStandForTheirFiles) {
    takeKey(facts, "a", KeyState::kEffective, "/a.dita#t/p", 1);
    takeKey(facts, "b", KeyState::kExcluded, "/b.dita", 2);
    EXPECT_TRUE(facts.isKeyTarget("/a.dita"));
    EXPECT_FALSE(facts.isKeyTarget("/b.dita"));
}

TEST_F(RunFactsTest, ADocumentIsKnownByItsFirstReading) {
    takeDocument(facts, "/a.dita", DocumentGrammar::kOwn);
    takeDocument(facts, "/b.dita", DocumentGrammar::kInvalid);
    takeDocument(facts, "/a.dita", DocumentGrammar::kNotFound);
    ASSERT_EQ(facts.documents().size(), 2U);
    EXPECT_EQ(facts.documents()[0].rootName, "topic");
    EXPECT_FALSE(facts.isWithoutDtd("/a.dita"));
    EXPECT_TRUE(facts.isWithoutDtd("/b.dita"));
    EXPECT_TRUE(facts.isRead("/a.dita"));
    EXPECT_FALSE(facts.isRead("/c.dita"));
    EXPECT_FALSE(facts.isWithoutDtd("/c.dita"));
    EXPECT_EQ(facts.document("/b.dita")->grammar, DocumentGrammar::kInvalid);
    EXPECT_EQ(facts.document("/c.dita"), nullptr);
}

TEST_F(RunFactsTest, TheFirstMapWithoutItsDtdIsKnown) {
    takeDocument(facts, "/a.dita", DocumentGrammar::kInvalid);
    takeDocument(facts, "/m.ditamap", DocumentGrammar::kOwn);
    EXPECT_EQ(facts.mapWithoutDtd(), nullptr);
    takeDocument(facts, "/n.ditamap", DocumentGrammar::kNotFound);
    takeDocument(facts, "/o.ditamap", DocumentGrammar::kInvalid);
    ASSERT_NE(facts.mapWithoutDtd(), nullptr);
    EXPECT_EQ(facts.documentWithoutDtd(), facts.mapWithoutDtd());
    EXPECT_EQ(facts.mapWithoutDtd()->path, "/n.ditamap");
}

TEST_F(RunFactsTest, ATopicWithoutItsDtdIsKnownAndNoFileThatNeedsNone) {
    takeDocument(facts, "/p.ditaval", DocumentGrammar::kNoDoctype, "val");
    takeDocument(facts, "/q.ditaval", DocumentGrammar::kNotFound, "val");
    takeDocument(facts, "/a.dita", DocumentGrammar::kOwn);
    EXPECT_EQ(facts.documentWithoutDtd(), nullptr);
    takeDocument(facts, "/b.dita", DocumentGrammar::kNoDoctype);
    takeDocument(facts, "/c.dita", DocumentGrammar::kInvalid);
    ASSERT_NE(facts.documentWithoutDtd(), nullptr);
    EXPECT_EQ(facts.documentWithoutDtd()->path, "/b.dita");
}

TEST_F(RunFactsTest, CountsTopicsAndDroppedFaults) {
    facts.take(observationOf(ObservationKind::kTopic, "/a.dita"));
    facts.take(observationOf(ObservationKind::kTopic, "/a.dita"));
    Observation dropped = observationOf(ObservationKind::kFaultsDropped, "");
    dropped.code = 5;
    facts.take(dropped);
    EXPECT_EQ(facts.topicCount(), 2U);
    EXPECT_EQ(facts.droppedFaults(), 5U);
}

TEST_F(RunFactsTest, KnowsWhatTheProfileLeavesOutAndWhatItMet) {
    facts.take(observationOf(ObservationKind::kExcluded, "/a.dita#t"));
    EXPECT_TRUE(facts.isExcluded("/a.dita"));
    EXPECT_FALSE(facts.isExcluded("/b.dita"));
    Observation value = observationOf(ObservationKind::kConditionValue, "audience");
    value.detail = "trade";
    facts.take(value);
    EXPECT_EQ(facts.conditionValues().size(), 1U);
}

TEST_F(RunFactsTest, KnowsWhyTheRunFailed) {
    EXPECT_EQ(facts.failure(), "");
    Observation failed = observationOf(ObservationKind::kRunFailed, "");
    failed.reason = "why";
    facts.take(failed);
    EXPECT_EQ(facts.failure(), "why");
}

TEST(ObservedPlaceTest, MayHaveNoFile) {
    EXPECT_EQ(placeOf({nullptr, 0, 0}), FindingPlace());
    EXPECT_EQ(placeOf({"/a.dita", 2, 3}), (FindingPlace{"/a.dita", 2, 3}));
}

}  // namespace
}  // namespace marrowpress
