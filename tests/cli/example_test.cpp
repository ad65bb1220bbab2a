#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/command_runner.h"

namespace marrowpress {
namespace {

/// The guide of the examples, in a folder of the test's own, published with DITA's own DTDs.
class ExampleTest : public testing::Test {
protected:
    ExampleTest() {
        std::filesystem::copy(MARROWPRESS_EXAMPLES, folder_.path() / "examples",
                              std::filesystem::copy_options::recursive);
        folder_.write("out/keep.txt", "");
    }

    /// What goes to standard output; the test fails when the run does, or shows a report line.
    std::string publish(const std::vector<std::string>& more) const {
        std::vector<std::string> arguments{"publish", "examples/drill-guide/drill-guide.ditamap",
                                           "--diagnostics", "none"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const CommandResult result = runCommand(folder_, arguments);
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(result.err, "");
        return result.out;
    }

    bool hasText(const std::string& name, const std::string& text) const {
        return folder_.read(name).find(text) != std::string::npos;
    }

    TemporaryFolder folder_;
};

TEST_F(ExampleTest, PublishesAsACompositeWithoutReports) {
    EXPECT_EQ(publish({"-f", "composite", "-o", "out/guide.dita"}), "out/guide.dita\n");
    EXPECT_TRUE(
        hasText("out/guide.dita", "<title>About the <keyword>Bramble 12</keyword></title>"));
    EXPECT_TRUE(hasText("out/guide.dita", "Replacing the motor brushes"));
    EXPECT_FALSE(hasText("out/guide.dita", "keyref"));
    EXPECT_FALSE(hasText("out/guide.dita", "conref"));
}

TEST_F(ExampleTest, LeavesOutWhatIsNotForTheHome) {
    publish({"-f", "composite", "-o", "out/guide.dita", "--filter",
             "examples/drill-guide/home.ditaval"});
    EXPECT_TRUE(hasText("out/guide.dita", "Cleaning the drill"));
    EXPECT_FALSE(hasText("out/guide.dita", "Replacing the motor brushes"));
    EXPECT_FALSE(hasText("out/guide.dita", "On a building site"));
}

TEST_F(ExampleTest, PublishesAsAFlatBookWithoutReports) {
    const std::string start = folder_.file("out/");
    EXPECT_EQ(publish({"-f", "flatbook", "-o", "out", "--one-location"}),
              start + "introduction.qs\n" + start + "Before you start.qs\n" + start +
                  "Using the drill.qs\n" + start + "maintenance.qs\n");
    EXPECT_TRUE(hasText("out/introduction.qs", start + "Using the drill.qs#id"));
}

TEST_F(ExampleTest, HasNoErrors) {
    const CommandResult result =
        runCommand(folder_, {"check", "examples/drill-guide/drill-guide.ditamap"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_NE(result.err.find("\n0 errors, "), std::string::npos) << result.err;
}

}  // namespace
}  // namespace marrowpress
