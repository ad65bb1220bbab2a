#include "cli/batch/job_source.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

using Indexes = std::vector<std::size_t>;

Plan planOfIds(const std::vector<std::string>& ids) {
    Plan plan;
    for (const std::string& id : ids) {
        plan.jobs.emplace_back();
        plan.jobs.back().id = id;
    }
    return plan;
}

class JobSourceTest : public testing::Test {
protected:
    Indexes selected() const { return selectedJobs(options_, plan_); }

    std::string fault() const {
        try {
            selected();
        } catch (const BatchFault& fault) {
            return fault.what();
        }
        return "none";
    }

    Plan plan_ = planOfIds({"a1", "a2", "b1", "b2", "b3"});
    BatchOptions options_;
};

TEST_F(JobSourceTest, WithoutAChoiceAllAreTaken) {
    EXPECT_EQ(selected(), (Indexes{0, 1, 2, 3, 4}));
}

TEST_F(JobSourceTest, PatternsAndTagsNarrowTheChoice) {
    plan_.jobs[1].tags = {"night"};
    plan_.jobs[2].tags = {"day", "night"};
    options_.idPatterns = {"a*", "b3"};
    EXPECT_EQ(selected(), (Indexes{0, 1, 4}));
    options_.tags = {"night"};
    EXPECT_EQ(selected(), Indexes{1});
    options_.tags = {"dusk"};
    EXPECT_EQ(fault(), "--select, --tag: no job is selected");
}

TEST_F(JobSourceTest, TheIndexCountsFromZero) {
    options_.index = "4";
    EXPECT_EQ(selected(), Indexes{4});
    options_.index = "5";
    EXPECT_EQ(fault(), "--index: there is no job 5; the plan has 5, from 0 on");
    options_.index = "-1";
    EXPECT_EQ(fault(), "--index: neither a number from 0 on nor env: -1");
}

TEST_F(JobSourceTest, ShardsTakeEachJobOnce) {
    options_.shard = "1/2";
    EXPECT_EQ(selected(), (Indexes{0, 2, 4}));
    options_.shard = "2/2";
    EXPECT_EQ(selected(), (Indexes{1, 3}));
    options_.shard = "7/9";
    EXPECT_EQ(selected(), Indexes()) << "more shards than jobs is no fault";
    for (const char* const wrong : {"0/2", "3/2", "1", "1/", "/2", "a/b"}) {
        options_.shard = wrong;
        EXPECT_EQ(fault(), std::string("--shard: this is to be I/N with I from 1 to N: ") + wrong);
    }
}

}  // namespace
}  // namespace marrowpress
