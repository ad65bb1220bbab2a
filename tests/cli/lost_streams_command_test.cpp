#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/cli/command_fixture.h"

namespace marrowpress {
namespace {

/// Streams that are closed, full, or that nobody reads: no signal, and no success that is none.
class LostStreamsCommandTest : public CommandTest {
protected:
    LostStreamsCommandTest() { folder_.write("1.json", request("out/m.dita")); }

    /// The usual runs of each command that has a result on standard output.
    static std::vector<Texts> commands() {
        return {
            {"publish", "docs/m.ditamap", "-f", "composite", "-o", "out/m.dita", "--catalog",
             "catalog.xml"},
            {"publish", "docs/m.ditamap", "-f", "flatbook", "-o", "out", "--one-location",
             "--catalog", "catalog.xml"},
            {"publish", "docs/m.ditamap", "-f", "composite", "-o", "-", "--catalog", "catalog.xml"},
            {"host", "1.json", "--catalog", "catalog.xml"},
            {"explain"},
            {"--help"},
            {"--version"}};
    }

    /// That of a composite, whose output must be whole.
    static Texts composite() { return commands().front(); }

    /// `arguments` with their result going into a pipe that nobody reads any more.
    int codeIntoABrokenPipe(const Texts& arguments, int stream) const {
        int ends[2] = {};
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        ::close(ends[0]);
        CommandSetting setting;
        const std::string path = "/proc/self/fd/" + std::to_string(ends[1]);
        (stream == STDOUT_FILENO ? setting.output : setting.error) = path;
        const CommandResult result = run(arguments, setting);
        ::close(ends[1]);
        return result.code;
    }

    void expectOutputWhole() const { EXPECT_EQ(bodiesOf("out/m.dita"), "Text of a;Text of b;"); }
};

TEST_F(LostStreamsCommandTest, AFullOrClosedStandardOutputIsAFailureWithAWord) {
    for (const std::string& output : {std::string("/dev/full"), std::string()}) {
        CommandSetting setting;
        setting.output = output;
        for (const Texts& arguments : commands()) {
            const CommandResult result = run(arguments, setting);
            EXPECT_EQ(result.code, 1) << arguments.front() << output;
            EXPECT_NE(result.err.find("standard output"), std::string::npos)
                << arguments.front() << output << result.err;
        }
        expectOutputWhole();
    }
}

TEST_F(LostStreamsCommandTest, AStandardOutputThatNobodyReadsIsAFailureAndNoSignal) {
    for (const Texts& arguments : commands()) {
        EXPECT_EQ(codeIntoABrokenPipe(arguments, STDOUT_FILENO), 1) << arguments.front();
    }
    expectOutputWhole();
}

TEST_F(LostStreamsCommandTest, AFileThatMayNotGrowIsAFailureAndNoSignal) {
    for (const Texts& arguments : commands()) {
        CommandSetting setting;
        // Standard output is a file, too.
        setting.largestFile = 0;
        EXPECT_EQ(run(arguments, setting).code, 1) << arguments.front();
    }
}

TEST_F(LostStreamsCommandTest, OfStandardErrorAloneMayBeLostWhereNothingIsToBeFound) {
    for (const std::string& error : {std::string("/dev/full"), std::string()}) {
        CommandSetting setting;
        setting.error = error;
        EXPECT_EQ(run({"host", "1.json", "--catalog", "catalog.xml"}, setting).code, 0) << error;
        expectOutputWhole();
        EXPECT_EQ(publish({"--diagnostics", "none"}, setting).code, 0) << error;
        expectOutputWhole();
        // Findings are part of what was asked for.
        EXPECT_EQ(publish({}, setting).code, 1) << error;
        expectOutputWhole();
        for (const char* const word : {"explain", "--help", "--version"}) {
            const CommandResult result = run({word}, setting);
            EXPECT_EQ(result.code, 0) << word << error;
            EXPECT_NE(result.out, "") << word << error;
        }
    }
    EXPECT_EQ(codeIntoABrokenPipe({"host", "1.json", "--catalog", "catalog.xml"}, STDERR_FILENO),
              0);
    expectOutputWhole();
}

TEST_F(LostStreamsCommandTest, WithAllThreeClosedNoFileTakesTheirPlace) {
    CommandSetting setting;
    setting.inputFile = "";
    setting.output = "";
    setting.error = "";
    for (const Texts& arguments : commands()) {
        EXPECT_EQ(run(arguments, setting).code, 1) << arguments.front();
    }
    expectOutputWhole();
    EXPECT_EQ(folder_.read("docs/m.ditamap").find("marrowpress"), std::string::npos);
    EXPECT_EQ(folder_.read("out/keep.txt"), "");
}

TEST_F(LostStreamsCommandTest, AFullTraceIsAFailureWithAWord) {
    const CommandResult result =
        run({"host", "1.json", "--catalog", "catalog.xml", "--trace", "/dev/full"});
    EXPECT_EQ(result.code, 1);
    EXPECT_TRUE(result.err.ends_with("marrowpress host: cannot write /dev/full\n")) << result.err;
    CommandSetting setting;
    setting.largestFile = 400;
    const CommandResult limited =
        run({"host", "1.json", "--catalog", "catalog.xml", "--trace", "t"}, setting);
    EXPECT_EQ(limited.code, 1);
}

TEST_F(LostStreamsCommandTest, AClosedStandardInputIsNoRequest) {
    CommandSetting setting;
    setting.inputFile = "";
    const CommandResult result = run({"host", "-"}, setting);
    EXPECT_EQ(result.code, 2);
    EXPECT_NE(result.err.find("cannot read standard input"), std::string::npos);
}

}  // namespace
}  // namespace marrowpress
