#include "runs/outside_fragments.h"

#include <gtest/gtest.h>

#include "tests/support/chosen_language.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class OutsideFragmentsTest : public testing::Test {
protected:
    OutsideFragmentsTest() {
        folder.write("t.dita",
                     R"(<!DOCTYPE concept PUBLIC "-//X//Y" "none.dtd"><concept id="c"><title/>)"
                     R"(<conbody><p id="p"><ph id="ph"/></p></conbody>)"
                     R"(<concept id="inner"><title/><conbody><p id="q"/></conbody></concept>)"
                     R"(<p id="odd"/></concept>)");
        folder.write("broken.dita", R"(<topic id="t"><title>)");
    }

    /// The finding that a link to the target becomes.
    Finding lookedAt(const std::string& target, const std::string& id = "MP208") {
        Finding finding;
        finding.id = id;
        finding.severity = Severity::kWarning;
        finding.text = "as it was";
        finding.hint = "as it was";
        finding.target = folder.file(target);
        return fragments.lookedAt(finding);
    }

    TemporaryFolder folder;
    ChosenLanguage english{Language::kEnglish};
    OutsideFragments fragments{folder.path().string(), {}};
};

TEST_F(OutsideFragmentsTest, WhatIsThereStaysALinkToTheOutside) {
    for (const char* const target :
         {"t.dita", "t.dita#c", "t.dita#c/p", "t.dita#c/ph", "t.dita#inner", "t.dita#inner/q",
          "t.dita#./q", "t.dita#c/odd"}) {
        const Finding finding = lookedAt(target);
        EXPECT_EQ(finding.id, "MP208") << target;
        EXPECT_EQ(finding.text, "as it was");
        EXPECT_EQ(finding.severity, Severity::kWarning);
    }
}

TEST_F(OutsideFragmentsTest, AFindingOfItsOwnHasTheSeverityThatWasAskedFor) {
    fragments = OutsideFragments(folder.path().string(), {{"MP204", Severity::kNote}});
    EXPECT_EQ(lookedAt("t.dita#none").severity, Severity::kNote);
}

TEST_F(OutsideFragmentsTest, WhatIsNotThereIsAFindingOfItsOwn) {
    const Finding topic = lookedAt("t.dita#none");
    EXPECT_EQ(topic.id, "MP204");
    EXPECT_EQ(topic.severity, Severity::kError);
    EXPECT_EQ(topic.text, "No topic in `t.dita` has the id `none`");
    EXPECT_NE(topic.hint, "as it was");
    EXPECT_NE(lookedAt("t.dita#q").hint.find("`#inner/q`"), std::string::npos);
    const Finding element = lookedAt("t.dita#c/q");
    EXPECT_EQ(element.id, "MP204");
    EXPECT_NE(element.text.find("`q`"), std::string::npos) << element.text;
    EXPECT_EQ(lookedAt("t.dita#inner/p").id, "MP204");
}

TEST_F(OutsideFragmentsTest, NothingIsSaidOfWhatCannotBeRead) {
    EXPECT_EQ(lookedAt("none.dita#x").id, "MP208");
    EXPECT_EQ(lookedAt("broken.dita#x").id, "MP208");
}

TEST_F(OutsideFragmentsTest, NothingElseIsLookedAt) {
    const Finding finding = lookedAt("t.dita#none", "MP203");
    EXPECT_EQ(finding.id, "MP203");
    EXPECT_EQ(finding.text, "as it was");
}

}  // namespace
}  // namespace marrowpress
