#include "cli/batch/plan_texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/batch/job_source.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using testing::HasSubstr;
using testing::Not;

/// A plan of a composite and a flat book.
class PlanTextsTest : public testing::Test {
protected:
    PlanTextsTest() {
        Job composite;
        composite.id = "guide";
        composite.options.map = folder_.file("m.ditamap");
        composite.options.output = folder_.file("guide.dita");
        composite.options.filters = {folder_.file("a.ditaval"), folder_.file("b.ditaval")};
        Job book;
        book.id = "book";
        book.transtype = "flatbook";
        book.options.format = OutputFormat::kFlatBook;
        book.options.map = folder_.file("m.ditamap");
        book.options.output = folder_.path().string();
        plan_.jobs = {composite, book};
    }

    TemporaryFolder folder_;
    Plan plan_;
};

TEST_F(PlanTextsTest, TheTableHasTheJobsThatAreWanted) {
    const std::string all = jobTableText(plan_, {0, 1});
    EXPECT_THAT(all, HasSubstr("JOB    FORMAT     MAP"));
    EXPECT_THAT(all, HasSubstr("guide  composite  " + folder_.file("m.ditamap") + "  " +
                               folder_.file("a.ditaval") + ", " + folder_.file("b.ditaval")));
    EXPECT_THAT(jobTableText(plan_, {1}), Not(HasSubstr("guide")));
}

TEST_F(PlanTextsTest, OnlyAFileThatIsThereIsReplaced) {
    const std::string output = folder_.file("guide.dita");
    EXPECT_THAT(dryRunText(plan_, {0}), HasSubstr("  " + output + "\n"));
    folder_.write("guide.dita", "");
    EXPECT_THAT(dryRunText(plan_, {0}), HasSubstr("  " + output + " (is replaced)\n"));
    EXPECT_THAT(dryRunText(plan_, {1}), Not(HasSubstr("is replaced")))
        << "the folder of a book stays";
    plan_.isCheck = true;
    EXPECT_THAT(dryRunText(plan_, {0}), Not(HasSubstr("guide.dita\n"))) << "nothing is written";
}

TEST_F(PlanTextsTest, AnEngineThatCannotMakeAPlanNeedsOne) {
    BatchOptions options;
    options.file = folder_.write("jobs.jsonl", "{}");
    options.engine = Engine::kSlurm;
    EXPECT_THROW(engineScriptText(options, plan_, folder_.path()), BatchFault);
    options.engine = Engine::kNinja;
    EXPECT_THAT(engineScriptText(options, plan_, folder_.path()), HasSubstr("batch plan"));
}

}  // namespace
}  // namespace marrowpress
