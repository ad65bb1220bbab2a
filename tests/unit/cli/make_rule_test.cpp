#include "cli/make_rule.h"

#include <gtest/gtest.h>

#include "tests/support/observations.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using Texts = std::vector<std::string>;

TEST(MakeRuleTest, EachPrerequisiteIsATargetToo) {
    EXPECT_EQ(makeRule("out/m.dita", {"a.dita", "b.dita"}),
              "out/m.dita: \\\n  a.dita \\\n  b.dita\n\na.dita:\n\nb.dita:\n");
    EXPECT_EQ(makeRule("out", {}), "out:\n");
}

TEST(MakeRuleTest, WhatHasAMeaningInARuleIsEscaped) {
    const struct {
        std::string name;
        std::string escaped;
    } cases[] = {{"a b", "a\\ b"},        {"a\tb", "a\\\tb"},     {"a#b", "a\\#b"},
                 {"a$b", "a$$b"},         {"a:b", "a\\:b"},       {"a\\b", "a\\b"},
                 {"a\\ b", "a\\\\\\ b"},  {"a\\#b", "a\\\\\\#b"}, {"a\\\\:b", "a\\\\\\\\\\:b"},
                 {"\xC3\xA4", "\xC3\xA4"}};
    for (const auto& expected : cases) {
        EXPECT_EQ(makeRule(expected.name, {}), expected.escaped + ":\n");
        EXPECT_EQ(makeRule("t", {expected.name}),
                  "t: \\\n  " + expected.escaped + "\n\n" + expected.escaped + ":\n");
    }
}

TEST(MakeRuleTest, ANameThatNoRuleCanHaveIsLeftOut) {
    EXPECT_EQ(makeRule("t", {"a\nb", "c", "d\re", "f;rm g", "h|i"}), "t: \\\n  c\n\nc:\n");
}

TEST(MakeRuleTest, AColonIsEscapedInARuleAndNotForInclude) {
    EXPECT_EQ(makeName("a: #$\\ b"), "a\\:\\ \\#$$\\\\\\ b");
    EXPECT_EQ(makeIncludeName("a: #$\\ b"), "a:\\ \\#$$\\\\\\ b");
}

TEST(PrerequisitesTest, AreTheFilesThatAreThere) {
    const TemporaryFolder folder;
    const std::string map = folder.write("in/m.ditamap", "");
    const ObservedStep step{{map.c_str(), 1, 1}, "", ""};
    DependencyList list(map);
    const std::string there = folder.write("a.png", "");
    const std::string absent = folder.file("in/none.dita");
    const std::string names[] = {there, absent, folder.path().string()};
    for (const std::string& name : names) {
        Observation met = observationOf(ObservationKind::kFileReference, name.c_str());
        met.steps = &step;
        list.observe(met);
    }
    list.finish();
    EXPECT_EQ(prerequisitesOf(list, folder.file("in")), (Texts{"m.ditamap", there}));
}

}  // namespace
}  // namespace marrowpress
