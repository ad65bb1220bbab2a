#include "cli/watch/watch_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "cli/memory_file.h"
#include "results/file_stamp.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/waiting.h"

namespace marrowpress {
namespace {

using testing::HasSubstr;
using testing::Not;

/// What the system allows no more of is as good as closed.
void closeEventQueues() {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        if (std::filesystem::read_symlink(entry.path(), ignored) == "anon_inode:inotify") {
            close(std::stoi(entry.path().filename()));
        }
    }
}

/// Follows one file. Each run adds a line to "log", and goes on for ever while "slow" is there.
class LoggedWork final : public WatchedWork {
public:
    explicit LoggedWork(const TemporaryFolder& folder) : folder_(folder) {}

    ExitCode run(int channel) override {
        std::ofstream(folder_.file("log"), std::ios::app) << folder_.read("source") << '\n';
        if (folder_.exists("hang up")) {
            kill(getppid(), SIGHUP);
        }
        if (folder_.exists("interrupt")) {
            kill(getppid(), SIGINT);
        }
        while (folder_.exists("slow")) {
            usleep(1000);
        }
        tell(channel, folder_.exists("refused") ? "" : "done");
        return folder_.exists("refused") ? ExitCode::kWrongUsage : ExitCode::kSuccess;
    }

    std::optional<WatchOutcome> outcomeOf(const TaskEnd& end) override {
        if (end.told.empty()) {
            folder_.write("was refused", "");
            return std::nullopt;
        }
        std::optional<WatchOutcome> outcome(std::in_place);
        if (folder_.exists("deaf")) {
            closeEventQueues();
        }
        outcome->files.add(folder_.file("source"), end.begin);
        folder_.write("finished", "");
        return outcome;
    }

private:
    const TemporaryFolder& folder_;
};

/// The watch runs in a process of its own, which a signal ends.
class WatchLoopTest : public testing::Test {
protected:
    WatchLoopTest() { folder_.write("source", "1"); }

    void start(WatchSetting setting = {}) {
        // What is there already was there before.
        std::this_thread::sleep_for(std::chrono::nanoseconds(kFileClockTick));
        watch_ = std::make_unique<TaskProcess>([this, setting = std::move(setting)](int) {
            std::signal(SIGCHLD, SIG_IGN);
            std::signal(SIGHUP, SIG_IGN);
            std::signal(SIGINT, SIG_IGN);
            LoggedWork work(folder_);
            std::ofstream err(folder_.file("err"));
            const WatchEnd end = watch(work, setting, {err, err});
            return end.signal == 0 ? static_cast<int>(end.code) : 100 + end.signal;
        });
    }

    bool isLogged(const std::string& lines) const {
        return waitUntil([&] { return folder_.exists("log") && folder_.read("log") == lines; });
    }

    bool isTold(const std::string& text) const {
        return waitUntil([&] {
            return folder_.exists("err") && folder_.read("err").find(text) != std::string::npos;
        });
    }

    TemporaryFolder folder_;
    std::unique_ptr<TaskProcess> watch_;
};

TEST_F(WatchLoopTest, RunsAtOnceAndAgainWhenAFileChanges) {
    start();
    ASSERT_TRUE(isTold("waiting for changes in 1 file;"));
    folder_.write("source", "2");
    ASSERT_TRUE(isLogged("1\n2\n"));
    EXPECT_TRUE(isTold("changed: " + folder_.file("source") + ".\n"));
    EXPECT_TRUE(isTold("findings as before"));
}

TEST_F(WatchLoopTest, ARunThatIsOldIsEnded) {
    start();
    ASSERT_TRUE(isTold("waiting"));
    folder_.write("slow", "");
    folder_.write("source", "2");
    ASSERT_TRUE(isLogged("1\n2\n"));
    folder_.write("source", "3");
    ASSERT_TRUE(isLogged("1\n2\n3\n"));
    EXPECT_THAT(folder_.read("err"), Not(HasSubstr("ended by signal")));
}

TEST_F(WatchLoopTest, PollingSeesChangesToo) {
    start({true, {}, false});
    ASSERT_TRUE(isTold("waiting"));
    folder_.write("source", "2");
    EXPECT_TRUE(isLogged("1\n2\n"));
}

TEST_F(WatchLoopTest, WhereTheSystemAllowsNoMoreWatchesFilesAreLookedAt) {
    folder_.write("deaf", "");
    start();
    ASSERT_TRUE(isTold("the system allows no more inotify watches"));
    folder_.write("source", "2");
    EXPECT_TRUE(isLogged("1\n2\n"));
    folder_.write("source", "3");
    EXPECT_TRUE(isLogged("1\n2\n3\n"));
}

TEST_F(WatchLoopTest, TheCommandIsRunEachTimeAndEndsWithTheWatch) {
    start({false, {"sh", "-c", "echo ran >>" + folder_.file("ran") + "; sleep 60"}, false});
    const auto hasRun = [this](const std::string& lines) {
        return waitUntil([&] { return folder_.exists("ran") && folder_.read("ran") == lines; });
    };
    ASSERT_TRUE(hasRun("ran\n"));
    folder_.write("source", "2");
    EXPECT_TRUE(hasRun("ran\nran\n")) << "the older one is ended";
    watch_->stop();
}

TEST_F(WatchLoopTest, ACommandThatFailsIsTold) {
    start({false, {"sh", "-c", "exit 5"}, false});
    EXPECT_TRUE(isTold("the command ended with 5"));
}

TEST_F(WatchLoopTest, AFirstRunThatDoesNotBeginEndsTheWatch) {
    folder_.write("refused", "");
    start();
    std::optional<TaskEnd> end;
    ASSERT_TRUE(waitUntil([&] { return (end = watch_->findEnd()).has_value(); }));
    EXPECT_EQ(end->exit, 2);
}

TEST_F(WatchLoopTest, ALaterRunThatDoesNotBeginDoesNot) {
    start();
    ASSERT_TRUE(isTold("waiting"));
    folder_.write("refused", "");
    folder_.write("source", "2");
    ASSERT_TRUE(waitUntil([&] { return folder_.exists("was refused"); }));
    std::filesystem::remove(folder_.path() / "refused");
    folder_.write("source", "3");
    EXPECT_TRUE(isLogged("1\n2\n3\n"));
}

TEST_F(WatchLoopTest, AnInterruptionEndsItAlsoInTheBackgroundOfAShell) {
    folder_.write("interrupt", "");
    start();
    std::optional<TaskEnd> end;
    ASSERT_TRUE(waitUntil([&] { return (end = watch_->findEnd()).has_value(); }));
    EXPECT_EQ(end->exit, 100 + SIGINT);
}

TEST_F(WatchLoopTest, AHangUpThatTheCallerIgnoresEndsNothing) {
    folder_.write("hang up", "");
    start();
    ASSERT_TRUE(isTold("waiting")) << "although the end of processes was ignored, too";
    folder_.write("source", "2");
    EXPECT_TRUE(isLogged("1\n2\n"));
    EXPECT_FALSE(watch_->findEnd());
}

TEST_F(WatchLoopTest, AQuietOneTellsNothing) {
    start({false, {}, true});
    ASSERT_TRUE(waitUntil([&] { return folder_.exists("finished"); }));
    folder_.write("source", "2");
    ASSERT_TRUE(isLogged("1\n2\n"));
    EXPECT_EQ(folder_.read("err"), "");
}

TEST(FindingsChangeTest, CountsWhatIsGoneAndWhatHasCome) {
    EXPECT_EQ(findingsChangeText({"a", "b", "b"}, {"b", "c"}), "2 fixed, 1 new");
    EXPECT_EQ(findingsChangeText({"a"}, {"a"}), "");
    EXPECT_EQ(findingsChangeText({}, {"a"}), "0 fixed, 1 new");
}

}  // namespace
}  // namespace marrowpress
