#include "runs/key_list.h"

#include <gtest/gtest.h>

#include "tests/support/told_keys.h"

namespace marrowpress {
namespace {

using Texts = std::vector<std::string>;

class KeyListTest : public testing::Test, protected ToldKeys {
protected:
    KeyUse useOf(const char* key) const { return list.find(key)->use(); }
};

TEST_F(KeyListTest, KeysStandInTheOrderInWhichTheyWereMetAndUndefinedOnesLast) {
    refer("gone", "/w/t.dita", 1);
    define("b", KeyState::kEffective, "/w/m.ditamap", 2);
    define("a", KeyState::kEffective, "/w/m.ditamap", 3);
    list.finish();
    Texts names;
    for (const ListedKey& key : list.keys()) {
        names.push_back(key.name);
        EXPECT_EQ(list.find(key.name), &key);
    }
    EXPECT_EQ(names, (Texts{"b", "a", "gone"}));
    EXPECT_EQ(list.definedNames(), (Texts{"b", "a"}));
    EXPECT_EQ(list.find("B"), nullptr);
}

TEST_F(KeyListTest, AKeyIsUsedWhenAnElementRefersToIt) {
    define("a", KeyState::kEffective, "/w/m.ditamap", 2);
    define("b", KeyState::kEffective, "/w/m.ditamap", 3);
    refer("a", "/w/t.dita", 1);
    EXPECT_EQ(useOf("a"), KeyUse::kUsed);
    EXPECT_EQ(useOf("b"), KeyUse::kUnused);
}

TEST_F(KeyListTest, ACopyOfAnElementIsNoFurtherUse) {
    refer("a", "/w/t.dita", 1);
    refer("a", "/w/t.dita", 1);
    refer("b", "/w/t.dita", 1);
    refer("a", "/w/s.dita", 1);
    list.finish();
    EXPECT_EQ(list.find("a")->uses,
              (std::vector<FindingPlace>{{"/w/s.dita", 1, 3}, {"/w/t.dita", 1, 3}}));
    EXPECT_EQ(list.find("b")->uses.size(), 1U);
}

TEST_F(KeyListTest, WhatTheProfileLeavesOutUsesNothing) {
    define("a", KeyState::kEffective, "/w/m.ditamap", 2);
    refer("a", "/w/t.dita", 1, kArtefact);
    refer("gone", "/w/t.dita", 1, kArtefact);
    EXPECT_EQ(useOf("a"), KeyUse::kUnused);
    EXPECT_EQ(list.find("gone"), nullptr);
}

TEST_F(KeyListTest, AKeyWhoseDefinitionsAreAllLeftOutIsExcluded) {
    define("a", KeyState::kExcluded, "/w/m.ditamap", 2);
    define("b", KeyState::kExcluded, "/w/m.ditamap", 3);
    define("b", KeyState::kEffective, "/w/m.ditamap", 4);
    refer("a", "/w/t.dita", 1);
    EXPECT_EQ(useOf("a"), KeyUse::kExcluded);
    EXPECT_EQ(useOf("b"), KeyUse::kUnused);
    EXPECT_EQ(list.find("b")->leading()->place.line, 4U);
}

TEST_F(KeyListTest, AKeyThatNoDefinitionGivesIsUndefined) {
    define("lost", KeyState::kLost, "/w/m.ditamap", 2);
    refer("gone", "/w/t.dita", 1);
    EXPECT_EQ(useOf("lost"), KeyUse::kUndefined);
    EXPECT_EQ(list.find("lost")->leading()->state, KeyState::kLost);
    EXPECT_EQ(useOf("gone"), KeyUse::kUndefined);
    EXPECT_EQ(list.find("gone")->leading(), nullptr);
}

TEST_F(KeyListTest, DefinitionsOfOneMapStandInItsOrder) {
    define("a", KeyState::kExcluded, "/w/m.ditamap", 9);
    define("a", KeyState::kEffective, "/w/m.ditamap", 2);
    define("a", KeyState::kShadowed, "/w/k.ditamap", 1);
    list.finish();
    std::vector<std::uint32_t> lines;
    for (const KeyDefinition& definition : list.find("a")->definitions) {
        lines.push_back(definition.place.line);
    }
    EXPECT_EQ(lines, (std::vector<std::uint32_t>{2, 9, 1}));
}

TEST_F(KeyListTest, ADefinitionStandsForWhatItHasBecome) {
    tellAll();
    const ListedKey& key = *list.find("a");
    EXPECT_EQ(key.effective()->target, "/w/t.dita#t");
    EXPECT_EQ(key.effective()->text, "An \"A\"");
    EXPECT_EQ(key.definitions[1].target, "/w/old.dita");
    EXPECT_EQ(key.definitions[1].text, "");
    EXPECT_EQ(key.definitions[1].via,
              (std::vector<FindingStep>{{{"/w/m.ditamap", 2, 3}, "href k"}}));
}

TEST_F(KeyListTest, AChainEndsWithTheKeyThatLeadsNoFurther) {
    define("a", KeyState::kEffective, "/w/m.ditamap", 1, "", "b");
    define("b", KeyState::kEffective, "/w/m.ditamap", 2, "", "gone");
    define("ring", KeyState::kEffective, "/w/m.ditamap", 3, "", "back");
    define("back", KeyState::kEffective, "/w/m.ditamap", 4, "", "ring");
    define("own", KeyState::kEffective, "/w/m.ditamap", 5, "", "own");
    define("end", KeyState::kEffective, "/w/m.ditamap", 6, "/w/t.dita");
    EXPECT_EQ(list.chainOf(*list.find("a")), (Texts{"b", "gone"}));
    EXPECT_EQ(list.chainOf(*list.find("ring")), (Texts{"back", "ring"}));
    EXPECT_EQ(list.chainOf(*list.find("own")), Texts{"own"});
    EXPECT_EQ(list.chainOf(*list.find("end")), Texts{});
}

}  // namespace
}  // namespace marrowpress
