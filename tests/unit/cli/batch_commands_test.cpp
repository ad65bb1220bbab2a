#include "cli/batch_commands.h"

#include <gtest/gtest.h>

#include "cli/command_line.h"

namespace marrowpress {
namespace {

using Texts = std::vector<std::string>;

class BatchCommandsTest : public testing::Test {
protected:
    static BatchOptions optionsOf(const Texts& arguments) {
        const Options options = parseOptions(arguments);
        const auto* const batch = std::get_if<BatchOptions>(&options);
        EXPECT_TRUE(batch) << faultOf(arguments);
        return batch ? *batch : BatchOptions();
    }

    static std::string faultOf(const Texts& arguments) {
        const Options options = parseOptions(arguments);
        const auto* const fault = std::get_if<UsageError>(&options);
        return fault ? fault->text : "none";
    }
};

TEST_F(BatchCommandsTest, ThePartsAreWordsBehindTheName) {
    EXPECT_EQ(withJoinedName({"batch", "check", "x"}), (Texts{"batch-check", "x"}));
    EXPECT_EQ(withJoinedName({"batch", "./check"}), (Texts{"batch", "./check"}));
    EXPECT_EQ(withJoinedName({"help", "batch", "run"}), (Texts{"help", "batch-run"}));
    EXPECT_EQ(withJoinedName({"publish", "batch", "run"}), (Texts{"publish", "batch", "run"}));
    EXPECT_EQ(withJoinedName({"batch"}), Texts{"batch"});
    EXPECT_EQ(withJoinedName({}), Texts());
}

TEST_F(BatchCommandsTest, EachPartHasItsAction) {
    EXPECT_EQ(optionsOf({"batch", "f"}).action, BatchAction::kPublish);
    EXPECT_EQ(optionsOf({"batch", "check", "f"}).action, BatchAction::kCheck);
    EXPECT_EQ(optionsOf({"batch", "list", "f"}).action, BatchAction::kList);
    EXPECT_EQ(optionsOf({"batch", "plan", "f", "--plan", "p"}).action, BatchAction::kPlan);
    EXPECT_EQ(optionsOf({"batch", "run", "f"}).action, BatchAction::kRun);
    EXPECT_EQ(optionsOf({"batch", "merge", "d", "--plan", "p"}).action, BatchAction::kMerge);
}

TEST_F(BatchCommandsTest, OptionsAreTakenAsTheyAreMeant) {
    const BatchOptions options = optionsOf({"batch",       "f",
                                            "-j",          "3",
                                            "--timeout",   "60",
                                            "--as",        "html5=composite",
                                            "--select",    "a*",
                                            "--tag",       "t",
                                            "--resume",    "--retry-failed",
                                            "--nice",      "--serialize",
                                            "--fail-fast", "--results",
                                            "r",           "--output",
                                            "o",           "--summary",
                                            "s.json",      "--report",
                                            "pages"});
    EXPECT_EQ(options.width, 3U);
    EXPECT_EQ(options.longest, std::chrono::seconds(60));
    EXPECT_EQ(options.formats.at("html5"), "composite");
    EXPECT_EQ(options.idPatterns, Texts{"a*"});
    EXPECT_EQ(options.tags, Texts{"t"});
    EXPECT_TRUE(options.resumes && options.retriesFailed && options.isNice && options.serializes &&
                options.failsFast);
    EXPECT_EQ(options.results, "r");
    EXPECT_EQ(options.outputFolder, "o");
    EXPECT_EQ(options.reports.summary, "s.json");
    EXPECT_EQ(options.reports.pageFolder, "pages");
    EXPECT_EQ(optionsOf({"batch", "f", "-j", "auto"}).width, 0U);
    EXPECT_EQ(optionsOf({"batch", "f"}).results, kUsualResultFolder);
}

TEST_F(BatchCommandsTest, WrongValuesAreNamed) {
    EXPECT_NE(faultOf({"batch", "f", "-j", "0"}).find("neither a number from 1 on nor auto: 0"),
              std::string::npos);
    EXPECT_NE(faultOf({"batch", "f", "--timeout", "soon"}).find("no number of seconds"),
              std::string::npos);
    EXPECT_NE(faultOf({"batch", "f", "--as", "html5=pdf"}).find("html5=pdf"), std::string::npos);
    EXPECT_NE(faultOf({"batch", "f", "--keep-going", "--fail-fast"}).find("only one of them"),
              std::string::npos);
    EXPECT_NE(
        faultOf({"batch", "run", "p", "--index", "1", "--shard", "1/2"}).find("only one of them"),
        std::string::npos);
    EXPECT_NE(faultOf({"batch"}).find("FILE"), std::string::npos);
    EXPECT_NE(faultOf({"batch", "plan", "f"}).find("--plan"), std::string::npos);
}

TEST_F(BatchCommandsTest, TheCommandOfAJobIsNotShown) {
    const Options options = parseOptions({"help"});
    const auto* const help = std::get_if<Information>(&options);
    ASSERT_TRUE(help);
    EXPECT_NE(help->text.find("batch"), std::string::npos);
    EXPECT_EQ(help->text.find("\n  job "), std::string::npos) << help->text;
    EXPECT_EQ(faultOf({"jobb"}).find("`job`"), std::string::npos) << faultOf({"jobb"});
}

}  // namespace
}  // namespace marrowpress
