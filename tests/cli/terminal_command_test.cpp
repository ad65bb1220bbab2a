#include <csignal>
#include <filesystem>
#include <string>
#include <system_error>

#include "tests/cli/long_job_fixture.h"
#include "tests/support/pseudo_terminal.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTaken = "\r\x1B[K";

/// What people see who sit at a terminal: it is where standard error goes.
class TerminalCommandTest : public LongJobTest {
protected:
    TerminalCommandTest() { terminal_.setWidth(100); }

    CommandSetting atTerminal() const {
        CommandSetting setting;
        setting.error = terminal_.path();
        setting.variables["TERM"] = "xterm";
        return setting;
    }

    PseudoTerminal terminal_;
};

TEST_F(TerminalCommandTest, ABatchHasALineThatLivesUntilItsEnd) {
    writeTwoJobs();
    const CommandResult ended = batch({"-j", "1"}, atTerminal());
    EXPECT_EQ(ended.code, 0);
    EXPECT_TRUE(ended.out.starts_with("JOB ")) << ended.out;
    const std::string shown = terminal_.shown();
    EXPECT_TRUE(shown.starts_with("\r0 of 2 done, 1 running, 0 failed\x1B[K")) << shown;
    EXPECT_TRUE(shown.ends_with(kTaken)) << shown;
    EXPECT_EQ(shown.find("[1/2]"), std::string::npos)
        << "of clean jobs the line tells enough: " << shown;
}

TEST_F(TerminalCommandTest, AJobThatIsNotCleanStaysToBeRead) {
    writeTwoJobs();
    folder_.write("docs/one.ditamap", mapOf("missing"));
    EXPECT_EQ(batch({"-j", "1"}, atTerminal()).code, 3);
    const std::string shown = terminal_.shown();
    EXPECT_NE(shown.find(kTaken + std::string("[1/2] one: findings, 2 errors, ")),
              std::string::npos)
        << shown;
}

TEST_F(TerminalCommandTest, ABatchTellsTheTimeThatIsLeftByTheTimesOfTheLastRun) {
    writeLongJob();
    folder_.write("jobs.jsonl", job("two", "docs/two.ditamap", "out/two.dita") +
                                    job("long", "docs/long.ditamap", "out/long.dita"));
    EXPECT_EQ(batch({"-j", "1"}, atTerminal()).code, 0);
    EXPECT_EQ(terminal_.shown().find(" left"), std::string::npos) << "nobody knows it yet";

    const fs::path result = folder_.path() / "marrowpress-results/two.json";
    const fs::file_time_type earlier = fs::last_write_time(result);
    const RunningCommand running(folder_, command({}), atTerminal());
    ASSERT_TRUE(waitUntil([&] {
        std::error_code error;
        return fs::last_write_time(result, error) != earlier && !error;
    }));
    const pid_t worker = workerOf(running);
    ASSERT_EQ(kill(worker, SIGSTOP), 0);
    std::string shown;
    EXPECT_TRUE(waitUntil([&] {
        shown += terminal_.shown();
        return shown.find("\r1 of 2 done, 1 running, 0 failed, ") != std::string::npos &&
               shown.find(" s left\x1B[K") != std::string::npos;
    })) << shown;
    kill(worker, SIGKILL);
}

TEST_F(TerminalCommandTest, WhatIsUpToDateTakesNoneOfTheTimeThatIsLeft) {
    writeLongJob();
    ASSERT_EQ(batch().code, 0);
    writeTopic("long", "short");
    ASSERT_EQ(batch({"--resume"}, atTerminal()).code, 0);
    const std::string shown = terminal_.shown();
    EXPECT_TRUE(shown.starts_with("\r1 of 2 done, 1 running, 0 failed\x1B[K"))
        << "nothing that took its time has ended: " << shown;
}

TEST_F(TerminalCommandTest, ARunShowsItsPhaseAndTakesItAway) {
    EXPECT_EQ(publish({}, atTerminal()).code, 0);
    const std::string shown = terminal_.shown();
    EXPECT_TRUE(shown.starts_with("\r")) << shown;
    const std::size_t taken = shown.rfind(kTaken);
    ASSERT_NE(taken, std::string::npos) << shown;
    EXPECT_EQ(shown.find('\r', taken + 1), std::string::npos) << shown;
}

TEST_F(TerminalCommandTest, WhoWantsNoLineGetsNone) {
    writeTwoJobs();
    CommandSetting dumb = atTerminal();
    dumb.variables["TERM"] = "dumb";
    EXPECT_EQ(batch({"--no-progress"}, atTerminal()).code, 0);
    EXPECT_EQ(batch({}, dumb).code, 0);
    EXPECT_EQ(publish({"--no-progress"}, atTerminal()).code, 0);
    const std::string shown = terminal_.shown();
    EXPECT_NE(shown.find("[1/2] "), std::string::npos) << shown;
    EXPECT_EQ(shown.find('\r'), std::string::npos) << shown;
}

TEST_F(TerminalCommandTest, FindingsHaveColoursUnlessTheEnvironmentSaysNo) {
    writeMap(R"(<topicref href="missing.dita"/>)");
    EXPECT_EQ(check({}, atTerminal()).code, 3);
    EXPECT_NE(terminal_.shown().find("\x1B[1m"), std::string::npos);
    CommandSetting plain = atTerminal();
    plain.variables["NO_COLOR"] = "1";
    EXPECT_EQ(check({}, plain).code, 3);
    EXPECT_EQ(terminal_.shown().find("\x1B[1m"), std::string::npos);
}

}  // namespace
}  // namespace marrowpress
