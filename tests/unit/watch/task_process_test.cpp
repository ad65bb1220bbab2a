#include "cli/watch/task_process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <optional>
#include <stdexcept>

#include "cli/memory_file.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/waiting.h"

namespace marrowpress {
namespace {

TaskEnd endOf(TaskProcess& process) {
    std::optional<TaskEnd> end;
    EXPECT_TRUE(waitUntil([&] { return (end = process.findEnd()).has_value(); }));
    return end.value_or(TaskEnd());
}

TEST(TaskProcessTest, GivesTheExitCodeAndWhatWasTold) {
    TaskProcess process([](int channel) {
        tell(channel, "told");
        return 3;
    });
    const TaskEnd end = endOf(process);
    EXPECT_EQ(end.exit, 3);
    EXPECT_EQ(end.told, "told");
    EXPECT_FALSE(end.signal);
}

TEST(TaskProcessTest, NamesTheSignalThatEndedIt) {
    TaskProcess process([](int) { return raise(SIGKILL); });
    const TaskEnd end = endOf(process);
    EXPECT_EQ(end.signal, SIGKILL);
    EXPECT_EQ(end.exit, 128 + SIGKILL);
}

TEST(TaskProcessTest, AnExceptionIsAFailure) {
    TaskProcess process([](int) -> int { throw std::runtime_error("on purpose"); });
    EXPECT_EQ(endOf(process).exit, 1);
}

TEST(TaskProcessTest, WhatDoesNotReactIsKilled) {
    const TemporaryFolder folder;
    TaskProcess process([&](int) {
        std::signal(SIGTERM, SIG_IGN);
        folder.write("deaf", "");
        for (;;) {
            pause();
        }
        return 0;
    });
    ASSERT_TRUE(waitUntil([&] { return folder.exists("deaf"); }));
    process.stop();
    EXPECT_FALSE(process.findEnd()) << "it was waited for already";
}

TEST(TaskProcessTest, StoppingAProgramStopsWhatItHasStarted) {
    const TemporaryFolder folder;
    TaskProcess process(
        programTask({"sh", "-c",
                     "sleep 60 & echo $! >" + folder.file("pid") + ".new; mv " +
                         folder.file("pid") + ".new " + folder.file("pid") + "; wait"}));
    ASSERT_TRUE(waitUntil([&] { return folder.exists("pid"); }));
    const pid_t child = std::stoi(folder.read("pid"));
    ASSERT_EQ(kill(child, 0), 0);
    process.stop();
    EXPECT_TRUE(waitUntil([&] { return kill(child, 0) != 0 || isZombie(child); }));
}

TEST(TaskProcessTest, AProgramIgnoresNoSignalThatThisOneIgnores) {
    const auto earlier = std::signal(SIGPIPE, SIG_IGN);
    TaskProcess process(programTask({"sh", "-c", "kill -PIPE $$"}));
    EXPECT_EQ(endOf(process).signal, SIGPIPE);
    std::signal(SIGPIPE, earlier);
}

TEST(TaskProcessTest, AProgramThatIsNotThereEndsAsInAShell) {
    TaskProcess process(programTask({"no-such-program-anywhere"}));
    EXPECT_EQ(endOf(process).exit, 127);
}

}  // namespace
}  // namespace marrowpress
