#include "findings/map_keys.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using Texts = std::vector<std::string>;
using std::chrono_literals::operator""ms;

constexpr auto kLongEnough = 60'000ms;

TEST(MapKeysTest, KeysOfAMapAndOfThoseInItAreGivenOnceAndSorted) {
    const TemporaryFolder folder;
    const std::string map =
        folder.write("m.ditamap", R"(<map><keydef keys="c  a"/><mapref href="k/k.ditamap"/>)"
                                  R"(<topicref href="a.dita" keys="b"/></map>)");
    folder.write("k/k.ditamap",
                 R"(<map><keydef keys="a d"/><mapref href="../m.ditamap#x"/></map>)");
    EXPECT_EQ(keyNamesOf(map, kLongEnough), (Texts{"a", "b", "c", "d"}));
}

TEST(MapKeysTest, WhatStandsInFrontOfAFaultIsGiven) {
    const TemporaryFolder folder;
    const std::string map = folder.write(
        "m.ditamap", R"(<map><mapref href="none.ditamap"/><keydef keys="a"/><keydef keys="b")");
    EXPECT_EQ(keyNamesOf(map, kLongEnough), Texts{"a"});
    EXPECT_EQ(keyNamesOf(folder.file("none.ditamap"), kLongEnough), Texts());
}

TEST(MapKeysTest, NoDtdIsReadAndNothingElsewhere) {
    const TemporaryFolder folder;
    folder.write("m.dtd", R"(<!ELEMENT map ANY><!ATTLIST map keys CDATA "from-dtd">)");
    const std::string map =
        folder.write("m.ditamap", R"(<!DOCTYPE map SYSTEM "m.dtd"><map><keydef keys="a" )"
                                  R"(href="http://127.0.0.1/x.ditamap"/></map>)");
    EXPECT_EQ(keyNamesOf(map, kLongEnough), Texts{"a"});
}

TEST(MapKeysTest, WhoHasNoPatienceGetsNothing) {
    const TemporaryFolder folder;
    const std::string map = folder.write("m.ditamap", R"(<map><keydef keys="a"/></map>)");
    EXPECT_EQ(keyNamesOf(map, 0ms), Texts());
}

}  // namespace
}  // namespace marrowpress
