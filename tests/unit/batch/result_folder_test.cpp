#include "cli/batch/result_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "cli/file_failure.h"
#include "results/result_json.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class ResultFolderTest : public testing::Test {
protected:
    static RunResult resultOfId(const std::string& id) {
        RunResult result;
        result.id = id;
        return result;
    }

    TemporaryFolder folder_;
    std::vector<std::string> warnings_;
    ResultFolder results_{folder_.file("results"),
                          [this](const std::string& text) { warnings_.push_back(text); }};
};

TEST_F(ResultFolderTest, IsMadeWithTheFirstResult) {
    EXPECT_EQ(results_.find("a"), std::nullopt);
    EXPECT_FALSE(folder_.exists("results"));
    results_.put(resultOfId("a"));
    ASSERT_TRUE(results_.find("a"));
    EXPECT_EQ(results_.textOf("a"), resultText(resultOfId("a")));
    EXPECT_TRUE(warnings_.empty());
}

TEST_F(ResultFolderTest, AfterARemovalTheJobHasNotHappened) {
    results_.put(resultOfId("a"));
    results_.remove("a");
    results_.remove("a");
    EXPECT_EQ(results_.find("a"), std::nullopt);
}

TEST_F(ResultFolderTest, AFolderInAResultsPlaceStays) {
    std::filesystem::create_directories(folder_.path() / "results/a.json");
    EXPECT_THROW(results_.remove("a"), FileFailure);
    EXPECT_TRUE(folder_.exists("results/a.json"));
}

TEST_F(ResultFolderTest, AFileThatIsNoResultIsToldOfOnce) {
    folder_.write("results/a.json", "{");
    EXPECT_EQ(results_.find("a"), std::nullopt);
    EXPECT_EQ(results_.find("a"), std::nullopt);
    EXPECT_EQ(warnings_.size(), 1U);
}

TEST_F(ResultFolderTest, AnOverruledResultStaysInItsFile) {
    results_.put(resultOfId("a"));
    RunResult failed = resultOfId("a");
    failed.state = ResultState::kFailed;
    failed.exit = 1;
    results_.overrule(failed);
    EXPECT_EQ(results_.find("a")->state, ResultState::kFailed);
    EXPECT_EQ(results_.textOf("a"), resultText(failed));
    EXPECT_EQ(folder_.read("results/a.json"), resultText(resultOfId("a")));
}

TEST_F(ResultFolderTest, WhatIsNoResultOfTheJobCountsAsAbsentWithAWarning) {
    folder_.write("results/a.json", "{");
    EXPECT_EQ(results_.find("a"), std::nullopt);
    folder_.write("results/b.json", resultText(resultOfId("a")));
    EXPECT_EQ(results_.find("b"), std::nullopt);
    EXPECT_EQ(warnings_,
              (std::vector<std::string>{
                  folder_.file("results/a.json") +
                      " counts as absent: it is no JSON object, or is cut off",
                  folder_.file("results/b.json") + " counts as absent: it is the result of `a`"}));
}

}  // namespace
}  // namespace marrowpress
