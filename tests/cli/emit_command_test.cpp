#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "tests/cli/command_fixture.h"

namespace marrowpress {
namespace {

/// Scripts for engines, run by those that are there.
class EmitTest : public CommandTest {
protected:
    EmitTest() {
        std::string project = "<project xmlns=\"https://www.dita-ot.org/project\">\n";
        for (const char* const name : {"one", "t w$o", "three"}) {
            const std::string topic = std::string(name).substr(0, 1);
            writeTopic(topic, name);
            folder_.write("docs/" + std::string(name) + ".ditamap",
                          R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd"><map>)"
                          R"(<topicref href=")" +
                              topic + R"(.dita"/></map>)");
            project += "<deliverable id=\"" + std::string(name) +
                       "\"><context><input href=\"docs/" + name +
                       ".ditamap\"/></context><output href=\".\"/>" +
                       "<publication transtype=\"composite\"/></deliverable>\n";
        }
        folder_.write("project.xml", project + "</project>\n");
    }

    void emit(const std::string& engine, const std::string& file, const std::string& to) const {
        const CommandResult result = run({"batch", "emit", engine, file, "--output", "made",
                                          "--results", "res", "--catalog", "catalog.xml"});
        ASSERT_EQ(result.code, 0) << result.err;
        folder_.write(to, result.out);
    }

    void plan() const {
        ASSERT_EQ(run({"batch", "plan", "project.xml", "--output", "made", "--plan", "plan.jsonl",
                       "--catalog", "catalog.xml"})
                      .code,
                  0);
    }

    struct Called {
        int code;
        std::string said;
    };

    /// What a program of the system says in the test's folder.
    Called call(const std::string& command) const {
        const int status = std::system(
            ("cd '" + folder_.path().string() + "' && " + command + " > said.txt 2>&1").c_str());
        return {WEXITSTATUS(status), folder_.read("said.txt")};
    }

    static bool isMissing(const std::string& program) {
        return std::system(("command -v " + program + " > /dev/null").c_str()) != 0;
    }

    /// So that a file that is written next is newer than all that was built.
    static void waitATick() { std::this_thread::sleep_for(std::chrono::milliseconds(20)); }

    static std::size_t countOf(const std::string& text, const std::string& part) {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos;
             at = text.find(part, at + 1)) {
            ++count;
        }
        return count;
    }
};

TEST_F(EmitTest, NinjaRunsExactlyTheJobsThatAChangedFileReaches) {
    if (isMissing("ninja")) {
        GTEST_SKIP() << "ninja is not installed";
    }
    emit("ninja", "project.xml", "build.ninja");
    const Called first = call("ninja -k 0");
    EXPECT_EQ(first.code, 0) << first.said;
    EXPECT_EQ(call("ninja").said, "ninja: no work to do.\n");
    EXPECT_EQ(run({"batch", "merge", "res", "--plan", "res/plan.jsonl"}).code, 0);
    waitATick();
    writeTopic("t", "changed");
    const Called second = call("ninja");
    EXPECT_EQ(countOf(second.said, "1 job: 1 clean"), 2U) << second.said;
    EXPECT_EQ(call("ninja").said, "ninja: no work to do.\n");
    EXPECT_NE(folder_.read("made/t w$o.dita").find("changed"), std::string::npos);
    EXPECT_NE(folder_.read("made/three.dita").find("changed"), std::string::npos);
}

TEST_F(EmitTest, AJobThatMissedAFileIsTriedAgainUntilItIsThere) {
    if (isMissing("ninja") || isMissing("make")) {
        GTEST_SKIP() << "ninja or make is not installed";
    }
    emit("ninja", "project.xml", "build.ninja");
    emit("make", "project.xml", "Makefile");
    ASSERT_EQ(call("ninja").code, 0);
    ASSERT_EQ(call("make -q").code, 0) << "both have the same results";
    waitATick();
    std::filesystem::remove(folder_.path() / "docs/o.dita");
    for (const char* const engine : {"ninja -k 0", "ninja -k 0", "make -k", "make -k"}) {
        const Called missing = call(engine);
        EXPECT_NE(missing.code, 0) << engine << missing.said;
        EXPECT_EQ(countOf(missing.said, "[MP111]"), 1U) << engine << missing.said;
    }
    writeTopic("o", "again");
    EXPECT_EQ(call("make").code, 0);
    EXPECT_EQ(call("make -q").code, 0);
    EXPECT_NE(folder_.read("made/one.dita").find("again"), std::string::npos);
}

TEST_F(EmitTest, ASlurmTaskAndAPartOfAMatrixAreTheJobsOfTheirNumber) {
    plan();
    emit("slurm", "plan.jsonl", "night.sh");
    for (const char* const index : {"0", "1", "2"}) {
        const Called task = call("env SLURM_ARRAY_TASK_ID=" + std::string(index) + " sh night.sh");
        EXPECT_EQ(task.code, 0) << task.said;
    }
    EXPECT_EQ(call("env SLURM_ARRAY_TASK_ID=3 sh night.sh").code, 2);
    EXPECT_EQ(run({"batch", "merge", "res", "--plan", "plan.jsonl"}).code, 0);
}

TEST_F(EmitTest, TheOthersTakeAPlan) {
    for (const char* const engine : {"parallel", "slurm", "kubernetes", "github"}) {
        const CommandResult result = run({"batch", "emit", engine, "project.xml"});
        EXPECT_EQ(result.code, 2) << engine;
        EXPECT_NE(result.err.find("is no plan"), std::string::npos) << result.err;
    }
    plan();
    for (const char* const engine : {"ninja", "make", "parallel", "kubernetes", "github"}) {
        const CommandResult result = run({"batch", "emit", engine, "plan.jsonl"});
        EXPECT_EQ(result.code, 0) << engine;
        EXPECT_NE(result.out.find(folder_.file("plan.jsonl")), std::string::npos) << result.out;
    }
}

}  // namespace
}  // namespace marrowpress
