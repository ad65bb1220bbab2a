#include "cli/batch/worker_arguments.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "cli/command_line.h"

namespace marrowpress {
namespace {

TEST(WorkerArgumentsTest, TheCommandReadsThemAsTheyAreMeant) {
    Plan plan;
    plan.isCheck = true;
    plan.catalogs = {"/a.xml", "/b.xml"};
    plan.diagnostics.failOn = FailOn::kNever;
    plan.diagnostics.language = Language::kGerman;
    plan.diagnostics.severities["MP208"] = Severity::kNote;
    BatchSetting setting;
    setting.pageFolder = "/pages";
    Job job;
    job.id = "guide";
    const Options read = parseOptions(workerArguments(plan, setting, job, /*isInPlace=*/true));
    const auto* const options = std::get_if<WorkerOptions>(&read);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->batch, getpid());
    EXPECT_TRUE(options->isCheck);
    EXPECT_TRUE(options->isInPlace);
    EXPECT_EQ(options->catalogs, plan.catalogs);
    EXPECT_EQ(options->diagnostics.failOn, FailOn::kNever);
    EXPECT_EQ(options->diagnostics.language, Language::kGerman);
    EXPECT_EQ(options->diagnostics.severities.at("MP208"), Severity::kNote);
    EXPECT_EQ(options->diagnostics.report, "/pages/guide.html");
}

TEST(WorkerArgumentsTest, WithoutFindingsNobodyLooksForThem) {
    Plan plan;
    plan.diagnostics.format = DiagnosticsFormat::kNone;
    const Options read = parseOptions(workerArguments(plan, {}, {}, /*isInPlace=*/false));
    const auto* const options = std::get_if<WorkerOptions>(&read);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->diagnostics.format, DiagnosticsFormat::kNone);
    EXPECT_FALSE(options->isCheck);
    EXPECT_FALSE(options->isInPlace);
}

}  // namespace
}  // namespace marrowpress
