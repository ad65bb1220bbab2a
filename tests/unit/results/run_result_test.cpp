#include "results/run_result.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(RunResultTest, TheStateComesFromTheExitCode) {
    EXPECT_EQ(stateOfExit(0), ResultState::kClean);
    EXPECT_EQ(stateOfExit(3), ResultState::kFindings);
    for (const int exit : {1, 2, 75, 137}) {
        EXPECT_EQ(stateOfExit(exit), ResultState::kFailed) << exit;
    }
    EXPECT_STREQ(stateName(ResultState::kClean), "clean");
    EXPECT_STREQ(stateName(ResultState::kFindings), "findings");
    EXPECT_STREQ(stateName(ResultState::kFailed), "failed");
}

TEST(RunResultTest, TheSummaryCountsFindings) {
    RunResult result;
    result.findings.resize(3);
    result.findings[0].severity = Severity::kWarning;
    result.topics = 7;
    result.dropped = 2;
    result.exit = 3;
    result.run.seconds = 1.5;
    const FindingSummary summary = summaryOf(result);
    EXPECT_EQ(summary.errors, 2U);
    EXPECT_EQ(summary.warnings, 1U);
    EXPECT_EQ(summary.topics, 7U);
    EXPECT_EQ(summary.dropped, 2U);
    EXPECT_EQ(summary.exit, 3);
    EXPECT_EQ(summary.seconds, 1.5);
}

}  // namespace
}  // namespace marrowpress
