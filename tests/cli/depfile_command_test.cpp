#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "tests/cli/command_fixture.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// The rule of an output, and what make and ninja do by it.
class DepfileTest : public CommandTest {
protected:
    DepfileTest() {
        writeTopic("a", R"(<ph keyref="k"/><image href="i.png"/><image href="none.png"/>)");
        folder_.write("docs/i.png", "");
        folder_.write("docs/other.txt", "");
        folder_.write("docs/k.ditamap",
                      R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd"><map>)"
                      R"(<topicref keys="k"><topicmeta><linktext>K</linktext></topicmeta>)"
                      R"(</topicref></map>)");
        writeMap(R"(<topicref href="k.ditamap"/><topicref href="a.dita"/>)");
    }

    CommandResult publishWithRule(const Texts& more = {}) const {
        Texts arguments{"--depfile", "out/m.d", "--fail-on", "never"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return publish(arguments);
    }

    /// What a program of the system says in the test's folder, and its exit status.
    std::string outputOf(const std::string& command) const {
        const std::string file = folder_.file("said.txt");
        const int status = std::system(
            ("cd '" + folder_.path().string() + "' && " + command + " > '" + file + "' 2>&1")
                .c_str());
        return folder_.read("said.txt") + "exit " + std::to_string(WEXITSTATUS(status)) + "\n";
    }

    static bool isInstalled(const std::string& program) {
        return std::system(("command -v " + program + " > /dev/null").c_str()) == 0;
    }

    /// Makes the file newer than all that was built.
    void touch(const std::string& name) const {
        constexpr std::chrono::milliseconds kLongerThanATick(20);
        std::this_thread::sleep_for(kLongerThanATick);
        fs::last_write_time(folder_.path() / name, fs::file_time_type::clock::now());
        std::this_thread::sleep_for(kLongerThanATick);
    }

    std::string command(const std::string& output, const std::string& rule) const {
        return std::string(MARROWPRESS_COMMAND) + " publish docs/m.ditamap -f composite -o " +
               output + " --catalog catalog.xml --fail-on never --depfile " + rule;
    }
};

TEST_F(DepfileTest, TheTargetIsTheOutputAsItIsGiven) {
    EXPECT_EQ(publishWithRule().code, 0);
    const std::string rule = folder_.read("out/m.d");
    EXPECT_TRUE(rule.starts_with("out/m.dita: \\\n  docs/m.ditamap \\\n  catalog.xml \\\n"))
        << rule;
    for (const char* const name :
         {"docs/a.dita", "docs/i.png", "docs/k.ditamap", "dtd/map.dtd", "dtd/topic.dtd"}) {
        EXPECT_NE(rule.find("  " + std::string(name)), std::string::npos) << rule;
        EXPECT_NE(rule.find("\n" + std::string(name) + ":\n"), std::string::npos) << rule;
    }
    EXPECT_EQ(rule.find("none.png"), std::string::npos) << rule;
    const std::string absolute = folder_.file("out/m.dita");
    EXPECT_EQ(run({"publish", "docs/m.ditamap", "-f", "composite", "-o", absolute, "--depfile",
                   "out/m.d", "--fail-on", "never", "--catalog", "catalog.xml"})
                  .code,
              0);
    EXPECT_TRUE(folder_.read("out/m.d").starts_with(absolute + ": \\\n"));
}

TEST_F(DepfileTest, TheTargetOfAFlatBookIsItsFolder) {
    const CommandResult result =
        run({"publish", "docs/m.ditamap", "-f", "flatbook", "-o", "out/book/", "--one-location",
             "--depfile", "out/m.d", "--fail-on", "never", "--catalog", "catalog.xml"});
    EXPECT_EQ(result.code, 0) << result.err;
    const std::string rule = folder_.read("out/m.d");
    EXPECT_TRUE(rule.starts_with("out/book/: \\\n  docs/m.ditamap \\\n")) << rule;
    EXPECT_NE(rule.find("\ndocs/i.png:\n"), std::string::npos) << rule;
    EXPECT_EQ(rule.find(".qs"), std::string::npos) << rule;
}

TEST_F(DepfileTest, ItIsTheSameWhetherFindingsAreWantedOrNot) {
    EXPECT_EQ(publishWithRule().code, 0);
    const std::string rule = folder_.read("out/m.d");
    EXPECT_EQ(publish({"--depfile", "out/m.d", "--diagnostics", "none"}).code, 0);
    EXPECT_EQ(folder_.read("out/m.d"), rule);
}

TEST_F(DepfileTest, AnUnobservedRunSaysTheSameWithAndWithoutIt) {
    const CommandResult without = publish({"--diagnostics", "none"});
    const CommandResult with = publish({"--depfile", "out/m.d", "--diagnostics", "none"});
    EXPECT_EQ(with.code, without.code);
    EXPECT_EQ(with.out, without.out);
    EXPECT_EQ(with.err, without.err);
}

TEST_F(DepfileTest, AProfileIsAPrerequisiteAndItsMergedCopyIsNot) {
    folder_.write("p.ditaval", "<val/>");
    folder_.write("q.ditaval", "<val/>");
    EXPECT_EQ(publishWithRule({"--filter", "p.ditaval", "--filter", "q.ditaval"}).code, 0);
    const std::string rule = folder_.read("out/m.d");
    EXPECT_NE(rule.find("\np.ditaval:\n"), std::string::npos) << rule;
    EXPECT_NE(rule.find("\nq.ditaval:\n"), std::string::npos) << rule;
    EXPECT_EQ(rule.find("filters.ditaval"), std::string::npos) << rule;
}

TEST_F(DepfileTest, ARunThatFailsLeavesTheOldOne) {
    folder_.write("out/m.d", "old: rule\n");
    folder_.write("docs/k.ditamap", "<map");
    EXPECT_EQ(publishWithRule().code, 1);
    EXPECT_EQ(folder_.read("out/m.d"), "old: rule\n");
}

TEST_F(DepfileTest, APlaceThatCannotBeUsedIsRefused) {
    const struct {
        std::string depfile;
        std::string reason;
    } cases[] = {
        {"docs/m.ditamap", " is what the run reads as MAP; choose another file"},
        {"out/m.dita", " is what the run writes for --output; choose another file"},
        {"out", " is a folder"},
        {"docs/a.dita", " is there already, and no report; choose another file"},
    };
    for (const auto& bad : cases) {
        const CommandResult result = publish({"--depfile", bad.depfile});
        EXPECT_EQ(result.code, 2) << result.err;
        EXPECT_TRUE(result.err.starts_with("marrowpress publish: --depfile: " + bad.depfile +
                                           bad.reason + "\n"))
            << result.err;
    }
    const CommandResult noFolder = publish({"--depfile", "none/m.d"});
    EXPECT_EQ(noFolder.code, 2);
    EXPECT_TRUE(noFolder.err.starts_with("marrowpress publish: --depfile: there is no folder none"))
        << noFolder.err;
    const CommandResult standardOutput =
        run({"publish", "docs/m.ditamap", "-f", "composite", "-o", "-", "--depfile", "out/m.d"});
    EXPECT_EQ(standardOutput.code, 2);
    EXPECT_TRUE(standardOutput.err.starts_with(
        "marrowpress publish: --depfile: standard output (-) is no file that a rule could name\n"))
        << standardOutput.err;
}

TEST_F(DepfileTest, ADepfileThatCannotBeWrittenIsAFailure) {
    for (const char* const format : {"short", "none"}) {
        const CommandResult result = publish({"--depfile", "/dev/full", "--diagnostics", format});
        EXPECT_EQ(result.code, 1) << result.err;
        EXPECT_NE(result.err.find("/dev/full"), std::string::npos) << result.err;
    }
}

TEST_F(DepfileTest, NinjaBuildsAgainForWhatHasChangedAndForNothingElse) {
    if (!isInstalled("ninja")) {
        GTEST_SKIP() << "ninja is not installed";
    }
    for (const std::string deps : {"", "\n  deps = gcc"}) {
        folder_.write("build.ninja", "rule publish\n  command = " + command("$out", "$out.d") +
                                         "\n  depfile = $out.d" + deps +
                                         "\nbuild out/m.dita: publish docs/m.ditamap\n");
        fs::remove(folder_.path() / "out/m.dita");
        EXPECT_NE(outputOf("ninja").find("[1/1]"), std::string::npos);
        EXPECT_EQ(outputOf("ninja"), "ninja: no work to do.\nexit 0\n");
        for (const char* const name : {"docs/a.dita", "docs/k.ditamap", "docs/i.png"}) {
            touch(name);
            EXPECT_NE(outputOf("ninja").find("[1/1]"), std::string::npos) << name;
            EXPECT_EQ(outputOf("ninja"), "ninja: no work to do.\nexit 0\n") << name;
        }
        touch("docs/other.txt");
        EXPECT_EQ(outputOf("ninja"), "ninja: no work to do.\nexit 0\n");
        fs::remove(folder_.path() / ".ninja_deps");
        fs::remove(folder_.path() / ".ninja_log");
    }
}

TEST_F(DepfileTest, MakeIsUpToDateUntilAPrerequisiteChanges) {
    if (!isInstalled("make")) {
        GTEST_SKIP() << "make is not installed";
    }
    folder_.write("Makefile",
                  "out/m.dita:\n\t" + command("$@", "out/m.d") + "\n-include out/m.d\n");
    EXPECT_TRUE(outputOf("make").ends_with("exit 0\n"));
    EXPECT_EQ(outputOf("make -q"), "exit 0\n");
    for (const char* const name : {"docs/a.dita", "docs/k.ditamap", "docs/i.png"}) {
        touch(name);
        EXPECT_EQ(outputOf("make -q"), "exit 1\n") << name;
        EXPECT_TRUE(outputOf("make").ends_with("exit 0\n"));
        EXPECT_EQ(outputOf("make -q"), "exit 0\n") << name;
    }
    touch("docs/other.txt");
    EXPECT_EQ(outputOf("make -q"), "exit 0\n");
    // One that is gone is no error.
    fs::remove(folder_.path() / "docs/i.png");
    EXPECT_EQ(outputOf("make -q"), "exit 1\n");
    EXPECT_TRUE(outputOf("make").ends_with("exit 0\n"));
    EXPECT_EQ(outputOf("make -q"), "exit 0\n");
}

TEST_F(DepfileTest, NamesWithSignsReachMakeAndNinjaAsTheyAre) {
    writeTopic("a b$c", "x");
    folder_.write("docs/x y/c:d.png", "");
    writeTopic("c", R"(<image href="x y/c:d.png"/>)");
    writeMap(R"(<topicref href="a b$c.dita"/><topicref href="c.dita"/>)");
    EXPECT_EQ(publishWithRule().code, 0);
    const std::string rule = folder_.read("out/m.d");
    EXPECT_NE(rule.find("\ndocs/a\\ b$$c.dita:\n"), std::string::npos) << rule;
    EXPECT_NE(rule.find("\ndocs/x\\ y/c\\:d.png:\n"), std::string::npos) << rule;
    if (isInstalled("make")) {
        folder_.write("Makefile", "out/m.dita:\n\ttouch $@\ninclude out/m.d\n");
        EXPECT_TRUE(outputOf("make -q").ends_with("exit 0\n")) << outputOf("make -q");
        touch("docs/x y/c:d.png");
        EXPECT_EQ(outputOf("make -q"), "exit 1\n");
    }
    if (isInstalled("ninja")) {
        folder_.write("build.ninja", "rule publish\n  command = " + command("$out", "$out.d") +
                                         "\n  depfile = $out.d\n"
                                         "build out/m.dita: publish docs/m.ditamap\n");
        outputOf("ninja");
        EXPECT_EQ(outputOf("ninja"), "ninja: no work to do.\nexit 0\n");
        touch("docs/a b$c.dita");
        EXPECT_NE(outputOf("ninja -n").find("[1/1]"), std::string::npos);
    }
}

}  // namespace
}  // namespace marrowpress
