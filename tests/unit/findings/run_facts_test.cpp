#include "findings/run_facts.h"

#include <gtest/gtest.h>

#include "tests/support/observations.h"

namespace marrowpress {
namespace {

class RunFactsTest : public testing::Test {
protected:
    void takeKey(const char* key, KeyState state, const char* href, std::uint32_t line) {
        const ObservedStep step{{"/m.ditamap", line, 1}, "", ""};
        Observation met = observationOf(ObservationKind::kKeyDefinition, key);
        met.code = static_cast<std::uint32_t>(state);
        met.element = "keydef";
        met.detail = href;
        met.steps = &step;
        facts.take(met);
    }

    void takeDocument(const char* path, DocumentGrammar grammar, const char* rootName = "topic") {
        Observation met = observationOf(ObservationKind::kDocumentRead, path);
        met.code = static_cast<std::uint32_t>(grammar);
        met.element = rootName;
        facts.take(met);
    }

    RunFacts facts;
};

TEST_F(RunFactsTest, OfSeveralDefinitionsTheOneThatSaysMostIsKept) {
    takeKey("k", KeyState::kShadowed, "", 1);
    EXPECT_EQ(facts.keyFact("k")->state, KeyState::kShadowed);
    takeKey("k", KeyState::kLost, "", 2);
    takeKey("k", KeyState::kExcluded, "", 3);
    EXPECT_EQ(facts.keyFact("k")->state, KeyState::kExcluded);
    EXPECT_EQ(facts.keyFact("k")->place, (FindingPlace{"/m.ditamap", 3, 1}));
    EXPECT_TRUE(facts.keys().empty());
    takeKey("k", KeyState::kEffective, "", 4);
    takeKey("k", KeyState::kExcluded, "", 5);
    EXPECT_EQ(facts.keyFact("k")->place.line, 4U);
    EXPECT_EQ(facts.keyFact("k")->element, "keydef");
    EXPECT_EQ(facts.keys(), std::vector<std::string>{"k"});
    EXPECT_EQ(facts.keyFact("K"), nullptr);
}

TEST_F(RunFactsTest, KeysThatCountStandForTheirFiles) {
    takeKey("a", KeyState::kEffective, "/a.dita#t/p", 1);
    takeKey("b", KeyState::kExcluded, "/b.dita", 2);
    EXPECT_TRUE(facts.isKeyTarget("/a.dita"));
    EXPECT_FALSE(facts.isKeyTarget("/b.dita"));
}

TEST_F(RunFactsTest, ADocumentIsKnownByItsFirstReading) {
    takeDocument("/a.dita", DocumentGrammar::kOwn);
    takeDocument("/b.dita", DocumentGrammar::kInvalid);
    takeDocument("/a.dita", DocumentGrammar::kNotFound);
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
    takeDocument("/a.dita", DocumentGrammar::kInvalid);
    takeDocument("/m.ditamap", DocumentGrammar::kOwn);
    EXPECT_EQ(facts.mapWithoutDtd(), nullptr);
    takeDocument("/n.ditamap", DocumentGrammar::kNotFound);
    takeDocument("/o.ditamap", DocumentGrammar::kInvalid);
    ASSERT_NE(facts.mapWithoutDtd(), nullptr);
    EXPECT_EQ(facts.documentWithoutDtd(), facts.mapWithoutDtd());
    EXPECT_EQ(facts.mapWithoutDtd()->path, "/n.ditamap");
}

TEST_F(RunFactsTest, ATopicWithoutItsDtdIsKnownAndNoFileThatNeedsNone) {
    takeDocument("/p.ditaval", DocumentGrammar::kNoDoctype, "val");
    takeDocument("/q.ditaval", DocumentGrammar::kNotFound, "val");
    takeDocument("/a.dita", DocumentGrammar::kOwn);
    EXPECT_EQ(facts.documentWithoutDtd(), nullptr);
    takeDocument("/b.dita", DocumentGrammar::kNoDoctype);
    takeDocument("/c.dita", DocumentGrammar::kInvalid);
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
