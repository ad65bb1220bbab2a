#include "cli/report_page.h"

#include <gtest/gtest.h>

#include "tests/support/told_keys.h"
#include "tests/support/told_page.h"

namespace marrowpress {
namespace {

class ReportPageTest : public testing::Test, protected ToldPage {
protected:
    std::string page(bool isCheck = true) const {
        const MapOutline outline(map, false, exclusions);
        return reportPage(
            {isCheck, map, output, profiles, {}, summary, outline, exclusions, keys, *files});
    }

    std::string map = "/w/m.ditamap";
    std::string output;
    std::vector<std::string> profiles;
    FindingSummary summary;
    ExclusionList exclusions;
    KeyList keys;
};

TEST_F(ReportPageTest, IsOneDocumentThatNeedsNoOther) {
    const std::string html = page();
    EXPECT_TRUE(html.starts_with("<!DOCTYPE html>\n<html lang=\"en\">"));
    EXPECT_TRUE(html.ends_with("</html>\n"));
    EXPECT_FALSE(holds(html, "{{"));
    for (const char* const reference : {" src=", "<link", "@import", "url("}) {
        EXPECT_FALSE(holds(html, reference)) << reference;
    }
    EXPECT_TRUE(holds(html, "content=\"default-src 'none';"));
}

TEST_F(ReportPageTest, SaysWhatTheRunCameTo) {
    struct Case {
        int exit;
        std::size_t errors;
        bool isCheck;
        const char* verdict;
    };
    for (const Case& one : std::vector<Case>{
             {0, 0, true, "good\"><strong>The map can be published<"},
             {3, 2, true, "error\"><strong>The map can be published, with errors<"},
             {1, 1, true, "error\"><strong>The map cannot be published<"},
             {0, 0, false, "good\"><strong>The publication is complete<"},
             {3, 2, false, "error\"><strong>The publication is complete, with errors<"},
             {1, 1, false, "error\"><strong>The publication is not complete<"}}) {
        summary.exit = one.exit;
        summary.errors = one.errors;
        EXPECT_TRUE(holds(page(one.isCheck), one.verdict)) << one.verdict;
    }
}

TEST_F(ReportPageTest, NamesTheInputsAndTheOutput) {
    output = "/w/out/<o>.dita";
    profiles = {"/w/p.ditaval"};
    EXPECT_TRUE(holds(page(false),
                      "<dt>Map<dd><code>m.ditamap</code><dt>Output<dd><code>out/&lt;o&gt;.dita"
                      "</code><dt>profile<dd><code>p.ditaval</code>"));
}

TEST_F(ReportPageTest, IsTheSameForTheSameContent) {
    EXPECT_EQ(page(), page());
}

TEST_F(ReportPageTest, IsInTheLanguageOfTheRun) {
    const ChosenLanguage german(Language::kGerman);
    const std::string html = page();
    EXPECT_TRUE(holds(html, "<html lang=\"de\">"));
    EXPECT_TRUE(holds(html, "Die Map lässt sich veröffentlichen"));
}

}  // namespace
}  // namespace marrowpress
