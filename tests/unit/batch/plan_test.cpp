#include "cli/batch/plan.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace marrowpress {
namespace {

std::vector<Job> twoJobs() {
    Job one;
    one.id = "one";
    one.tags = {"night"};
    one.transtype = "html5";
    one.options.map = "m.ditamap";
    one.options.output = "out/one.dita";
    one.options.filters = {"a.ditaval", "b.ditaval"};
    Job two;
    two.id = "two";
    two.options.map = "/n/m.ditamap";
    two.options.output = "/n/book";
    two.options.format = OutputFormat::kFlatBook;
    return {one, two};
}

Plan samplePlan() {
    DiagnosticsOptions diagnostics;
    diagnostics.failOn = FailOn::kWarning;
    diagnostics.language = Language::kGerman;
    diagnostics.severities["MP208"] = Severity::kError;
    return makePlan(twoJobs(), /*isCheck=*/false, {"c.xml", "file:///d.xml"}, diagnostics);
}

std::string planFault(const std::string& text) {
    try {
        parsePlan(text, "plan.jsonl");
    } catch (const PlanError& fault) {
        return fault.what();
    }
    return "none";
}

TEST(PlanTest, AllPathsAreAbsolute) {
    const Plan plan = samplePlan();
    const std::string folder = std::filesystem::current_path().string() + "/";
    EXPECT_EQ(plan.jobs[0].options.map, folder + "m.ditamap");
    EXPECT_EQ(plan.jobs[0].options.output, folder + "out/one.dita");
    EXPECT_EQ(plan.jobs[0].options.filters[1], folder + "b.ditaval");
    EXPECT_EQ(plan.jobs[1].options.map, "/n/m.ditamap");
    EXPECT_EQ(plan.catalogs, (std::vector<std::string>{folder + "c.xml", "file:///d.xml"}));
}

TEST(PlanTest, WhatIsWrittenIsReadAsItWas) {
    const Plan plan = samplePlan();
    const std::string text = planText(plan);
    EXPECT_TRUE(isPlan(text));
    const Plan read = parsePlan(text, "plan.jsonl");
    EXPECT_EQ(planText(read), text);
    EXPECT_EQ(read.digest, plan.digest);
    EXPECT_EQ(read.jobs[0].tags, std::vector<std::string>{"night"});
    EXPECT_EQ(read.jobs[0].options.filters.size(), 2U);
    EXPECT_EQ(read.diagnostics.failOn, FailOn::kWarning);
    EXPECT_EQ(read.diagnostics.language, Language::kGerman);
    EXPECT_EQ(read.diagnostics.severities.at("MP208"), Severity::kError);
    EXPECT_FALSE(read.isCheck);
}

TEST(PlanTest, TheDigestIsOfAllThatCounts) {
    const Plan plan = samplePlan();
    EXPECT_EQ(makePlan(plan.jobs, false, plan.catalogs, plan.diagnostics).digest, plan.digest);
    EXPECT_NE(makePlan(plan.jobs, true, plan.catalogs, plan.diagnostics).digest, plan.digest);
    EXPECT_NE(makePlan(plan.jobs, false, {}, plan.diagnostics).digest, plan.digest);
    std::vector<Job> jobs = plan.jobs;
    jobs[1].options.isForPrint = true;
    EXPECT_NE(makePlan(jobs, false, plan.catalogs, plan.diagnostics).digest, plan.digest);
}

TEST(PlanTest, WhatIsNoPlanSaysSo) {
    const std::string text = planText(samplePlan());
    EXPECT_FALSE(isPlan("{\"id\":1}"));
    EXPECT_EQ(planFault("{}"), "plan.jsonl: this is no plan");
    EXPECT_EQ(planFault("{\"plan\":2}\n"), "plan.jsonl: this is a plan of another version");
    EXPECT_EQ(planFault(text.substr(0, text.find('\n') + 1)),
              "plan.jsonl: the plan was changed, or is cut off");
    EXPECT_TRUE(planFault("{\"plan\":1}\n").starts_with("plan.jsonl: "))
        << planFault("{\"plan\":1}\n");
    EXPECT_TRUE(planFault(text + "x\n").starts_with("plan.jsonl:4: ")) << planFault(text + "x\n");
}

}  // namespace
}  // namespace marrowpress
