#include "cli/batch/batch_view.h"

#include <gtest/gtest.h>

#include <sstream>

namespace marrowpress {
namespace {

class BatchViewTest : public testing::Test {
protected:
    BatchViewTest() {
        for (const char* const id : {"a", "b", "c"}) {
            plan_.jobs.emplace_back();
            plan_.jobs.back().id = id;
        }
        outcomes_.resize(plan_.jobs.size());
    }

    BatchView view() { return {plan_, indexes_, options_, {}, streams_}; }

    void finish(std::size_t index, ResultState state, int exit) {
        outcomes_[index].state = JobOutcome::State::kEnded;
        outcomes_[index].result = state;
        outcomes_[index].exit = exit;
        outcomes_[index].seconds = 1.25;
        outcomes_[index].memory = std::uint64_t{42} << 20;
    }

    Plan plan_;
    std::vector<std::size_t> indexes_{0, 1, 2};
    DiagnosticsOptions options_;
    std::ostringstream out_;
    std::ostringstream err_;
    Streams streams_{out_, err_};
    std::vector<JobOutcome> outcomes_;
};

TEST_F(BatchViewTest, TheTableHasARowForEachJobAndTheirNumbers) {
    finish(0, ResultState::kClean, 0);
    finish(1, ResultState::kFailed, 137);
    outcomes_[1].errors = 2;
    const std::string table = view().tableText(outcomes_);
    EXPECT_TRUE(
        table.starts_with("JOB  STATE    EXIT  ERRORS  WARNINGS  TIME   MEMORY\n"
                          "a    clean    0     0       0         1.2 s  42 MB\n"
                          "b    failed   137   2       0         1.2 s  42 MB\n"
                          "c    not run  -     -       -         -      -\n"
                          "\n3 jobs: 1 clean, 1 failed, 1 not run; "))
        << table;
}

TEST_F(BatchViewTest, OfManyJobsCleanOnesAreOnlyCounted) {
    plan_.jobs.clear();
    outcomes_.assign(100, {});
    indexes_.clear();
    for (std::size_t index = 0; index < outcomes_.size(); ++index) {
        plan_.jobs.emplace_back();
        plan_.jobs.back().id = "j" + std::to_string(index);
        indexes_.push_back(index);
        finish(index, ResultState::kClean, 0);
    }
    EXPECT_TRUE(view().tableText(outcomes_).starts_with("100 jobs: 100 clean; "));
    outcomes_[7].result = ResultState::kFindings;
    const std::string table = view().tableText(outcomes_);
    EXPECT_NE(table.find("\nj7 "), std::string::npos) << table;
    EXPECT_NE(table.find("100 jobs: 99 clean, 1 with findings; "), std::string::npos) << table;
}

TEST_F(BatchViewTest, EachJobGetsALineAndItsFindings) {
    BatchView shown = view();
    RunResult result;
    result.id = "b";
    result.findings.resize(1);
    result.findings[0].id = "MP105";
    result.findings[0].text = "what is wrong";
    finish(1, ResultState::kFindings, 3);
    outcomes_[1].errors = 1;
    shown.end(1, outcomes_[1], result);
    EXPECT_TRUE(err_.str().starts_with("[1/3] b: findings, 1 error, 1.2 s\n")) << err_.str();
    EXPECT_NE(err_.str().find("what is wrong [MP105]"), std::string::npos) << err_.str();
    outcomes_[0] = outcomes_[1];
    outcomes_[0].state = JobOutcome::State::kUpToDate;
    shown.end(0, outcomes_[0], result);
    EXPECT_NE(err_.str().find("[2/3] a: findings, 1 error, up to date\n"), std::string::npos)
        << err_.str();
    EXPECT_TRUE(out_.str().empty());
}

TEST_F(BatchViewTest, QuietShowsNothingButFindings) {
    options_.isQuiet = true;
    BatchView shown = view();
    finish(0, ResultState::kClean, 0);
    shown.end(0, outcomes_[0], RunResult());
    EXPECT_EQ(err_.str(), "");
}

TEST(DurationTextTest, GrowsWithTheTime) {
    EXPECT_EQ(durationText(0.04), "0.0 s");
    EXPECT_EQ(durationText(59.9), "59.9 s");
    EXPECT_EQ(durationText(60), "1:00 min");
    EXPECT_EQ(durationText(187), "3:07 min");
    EXPECT_EQ(durationText(7387), "2:03:07 h");
}

}  // namespace
}  // namespace marrowpress
