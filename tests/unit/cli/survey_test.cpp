#include "cli/survey.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class SurveyTest : public testing::Test {
protected:
    SurveyTest() {
        options.map = folder.write("m.ditamap", "<map><topicref href=\"none.dita\"/></map>");
        options.diagnostics.failOn = FailOn::kNever;
        options.diagnostics.hasNoProgress = true;
    }

    ExitCode run() {
        return runSurvey({"survey",
                          options,
                          [this](const Observation& met) {
                              const bool isMap = met.kind == ObservationKind::kDocumentRead &&
                                                 options.map == met.target;
                              hasMap |= isMap;
                              if (isMap && changesTheMap) {
                                  changesTheMap = false;
                                  folder.write("m.ditamap", "<map/>");
                              }
                          },
                          {},
                          [this](const Streams&) {
                              ++results;
                              return resultCode;
                          },
                          "",
                          [this] { ++runs; }},
                         {out, err});
    }

    TemporaryFolder folder;
    RunOptions options;
    std::ostringstream out;
    std::ostringstream err;
    bool hasMap = false;
    bool changesTheMap = false;  ///< Once, when it was read.
    int runs = 0;
    int results = 0;
    ExitCode resultCode = ExitCode::kSuccess;
};

TEST_F(SurveyTest, TellsWhatTheRunMeetsAndThenGivesItsResult) {
    EXPECT_EQ(run(), ExitCode::kSuccess) << err.str();
    EXPECT_TRUE(hasMap);
    EXPECT_EQ(results, 1);
}

TEST_F(SurveyTest, TheResultDecidesTheExitCodeAndFindingsDoNot) {
    resultCode = ExitCode::kWrongUsage;
    EXPECT_EQ(run(), ExitCode::kWrongUsage);
    EXPECT_NE(err.str().find("none.dita"), std::string::npos) << err.str();
}

TEST_F(SurveyTest, ARunThatFailsHasNoResult) {
    folder.write("m.ditamap", "<map");
    EXPECT_EQ(run(), ExitCode::kRunFailed);
    EXPECT_EQ(results, 0);
    EXPECT_NE(err.str(), "");
}

TEST_F(SurveyTest, WhatWasReadWhileItWasBeingChangedIsForgottenAndToldOnce) {
    options.result = folder.file("r.json");
    changesTheMap = true;
    EXPECT_EQ(run(), ExitCode::kSuccess) << err.str();
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(results, 1);
    EXPECT_EQ(err.str().find("none.dita"), std::string::npos)
        << "the map has no such reference any more: " << err.str();
}

TEST_F(SurveyTest, WhatIsRefusedIsNotRun) {
    options.map = folder.file("none.ditamap");
    EXPECT_EQ(run(), ExitCode::kWrongUsage);
    EXPECT_FALSE(hasMap);
    EXPECT_EQ(results, 0);
    EXPECT_TRUE(err.str().starts_with("marrowpress survey: MAP: cannot read ")) << err.str();
}

}  // namespace
}  // namespace marrowpress
