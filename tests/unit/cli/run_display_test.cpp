#include "cli/run_display.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/observations.h"

namespace marrowpress {
namespace {

/// Standard error is no terminal here; `tests/unit/cli/terminal_test.cpp` has the live line.
class RunDisplayTest : public testing::Test {
protected:
    /// What is shown of a run with a line of each kind.
    std::string shown() {
        std::ostringstream err;
        RunDisplay display(options, err);
        display.observe(observationOf(ObservationKind::kPhase, "keys"));
        display.showProgressLine("step\r\n");
        display.observe(observationOf(ObservationKind::kDocumentRead, "/a/b.dita"));
        display.showReportLine("fault\r\n");
        display.end();
        return err.str();
    }

    DiagnosticsOptions options;
};

TEST_F(RunDisplayTest, ShowsNoProgressWhereThereIsNoTerminal) {
    EXPECT_EQ(shown(), "fault\n");
}

TEST_F(RunDisplayTest, ShowsEachStepWhenItIsAskedTo) {
    options.isVerbose = true;
    EXPECT_EQ(shown(), "> step\nfault\n");
}

TEST_F(RunDisplayTest, ShowsNothingButFindingsForTools) {
    options.isVerbose = true;
    for (const DiagnosticsFormat format : {DiagnosticsFormat::kShort, DiagnosticsFormat::kJson}) {
        options.format = format;
        EXPECT_EQ(shown(), "fault\n");
    }
}

TEST_F(RunDisplayTest, ShowsStepsWhenTheFindingsForToolsGoElsewhere) {
    options.isVerbose = true;
    options.format = DiagnosticsFormat::kJson;
    options.file = "findings.jsonl";
    EXPECT_EQ(shown(), "> step\nfault\n");
}

}  // namespace
}  // namespace marrowpress
