#include "cli/removal_on_signal.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <optional>

#include "tests/support/current_folder.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// The status of a process that does something, and then gets a signal; exit code 0 when it
/// outlives the signal.
int statusAfterSignal(int number, const std::function<void()>& action) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        constexpr rlimit kNoCore{};
        setrlimit(RLIMIT_CORE, &kNoCore);
        action();
        raise(number);
        _exit(0);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

bool isEndedBy(int number, int status) {
    return WIFSIGNALED(status) && WTERMSIG(status) == number;
}

class RemovalOnSignalTest : public testing::Test {
protected:
    TemporaryFolder folder;
};

TEST_F(RemovalOnSignalTest, WhatItNamesIsGoneAndTheSignalEndsTheProcess) {
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        const std::string file = folder.write("file", "text");
        const int status = statusAfterSignal(number, [&file] { new RemovalOnSignal(file); });
        EXPECT_TRUE(isEndedBy(number, status)) << status;
        EXPECT_FALSE(folder.exists("file")) << number;
    }
}

TEST_F(RemovalOnSignalTest, AFolderGoesWithAllThatIsInIt) {
    for (int count = 0; count < 1000; ++count) {
        folder.write("scratch/many/file with a long name " + std::to_string(count), "text");
    }
    folder.write("scratch/a/b/c/d/file", "text");
    folder.write("scratch/.hidden/..x", "text");
    folder.write("kept/file", "text");
    fs::create_directory_symlink(folder.path() / "kept", folder.path() / "scratch/link");
    fs::create_symlink("none", folder.path() / "scratch/a/dangling");
    statusAfterSignal(SIGTERM, [this] { new RemovalOnSignal(folder.file("scratch")); });
    EXPECT_FALSE(folder.exists("scratch"));
    EXPECT_EQ(folder.read("kept/file"), "text");
}

TEST_F(RemovalOnSignalTest, ALinkItselfIsRemoved) {
    folder.write("kept/file", "text");
    fs::create_directory_symlink(folder.path() / "kept", folder.path() / "link");
    statusAfterSignal(SIGTERM, [this] { new RemovalOnSignal(folder.file("link")); });
    EXPECT_FALSE(folder.exists("link"));
    EXPECT_TRUE(folder.exists("kept/file"));
}

TEST_F(RemovalOnSignalTest, SeveralAreRemovedAndNoneThatHasEnded) {
    for (const char* const name : {"1", "2", "3", "4"}) {
        folder.write(name, "text");
    }
    statusAfterSignal(SIGTERM, [this] {
        new RemovalOnSignal(folder.file("1"));
        auto second = std::make_unique<RemovalOnSignal>(folder.file("2"));
        new RemovalOnSignal(folder.file("none"));
        new RemovalOnSignal(folder.file("3"));
        const RemovalOnSignal fourth(folder.file("4"));
        second.reset();
    });
    EXPECT_FALSE(folder.exists("1"));
    EXPECT_TRUE(folder.exists("2"));
    EXPECT_FALSE(folder.exists("3"));
    EXPECT_TRUE(folder.exists("4"));
}

TEST_F(RemovalOnSignalTest, AFolderThatIsToBeEmptyGoesOnlyIfItIs) {
    fs::create_directories(folder.path() / "a/b");
    folder.write("c/file", "text");
    statusAfterSignal(SIGTERM, [this] {
        new RemovalOnSignal(folder.file("a"), Removal::kEmptyFolder);
        new RemovalOnSignal(folder.file("a/b"), Removal::kEmptyFolder);
        new RemovalOnSignal(folder.file("c"), Removal::kEmptyFolder);
    });
    EXPECT_FALSE(folder.exists("a"));
    EXPECT_TRUE(folder.exists("c/file"));
}

TEST_F(RemovalOnSignalTest, AnIgnoredSignalStaysIgnored) {
    folder.write("file", "text");
    const int status = statusAfterSignal(SIGHUP, [this] {
        std::signal(SIGHUP, SIG_IGN);
        new RemovalOnSignal(folder.file("file"));
    });
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_TRUE(folder.exists("file"));
}

TEST_F(RemovalOnSignalTest, AnotherFolderMayBecomeTheCurrentOne) {
    folder.write("file", "text");
    fs::create_directory(folder.path() / "other");
    statusAfterSignal(SIGTERM, [this] {
        new RemovalOnSignal(folder.file("file"));
        fs::current_path(folder.path() / "other");
    });
    EXPECT_FALSE(folder.exists("file"));
}

TEST_F(RemovalOnSignalTest, LeavesTheHandlersAsTheyWere) {
    struct sigaction before {};
    struct sigaction meanwhile {};
    struct sigaction after {};
    sigaction(SIGTERM, nullptr, &before);
    {
        const RemovalOnSignal removal(folder.file("file"));
        sigaction(SIGTERM, nullptr, &meanwhile);
    }
    sigaction(SIGTERM, nullptr, &after);
    EXPECT_NE(meanwhile.sa_handler, before.sa_handler);
    EXPECT_EQ(after.sa_handler, before.sa_handler);
}

TEST_F(RemovalOnSignalTest, AFolderStaysWhereAFileIsMeant) {
    folder.write("folder/file", "text");
    folder.write("file", "text");
    statusAfterSignal(SIGTERM, [this] {
        for (const Removal removal : {Removal::kFile, Removal::kNewFile}) {
            new RemovalOnSignal(folder.file("folder"), removal);
            new RemovalOnSignal(folder.file("none"), removal);
        }
        new RemovalOnSignal(folder.file("file"), Removal::kFile);
        folder.write("folder/other", "text");
        fs::create_directory(folder.path() / "none");
    });
    EXPECT_TRUE(folder.exists("folder/file"));
    EXPECT_TRUE(folder.exists("none"));
    EXPECT_FALSE(folder.exists("file"));
}

TEST_F(RemovalOnSignalTest, AnEarlierFileStaysUntilItIsTouched) {
    for (const char* const name : {"untouched", "written", "replaced"}) {
        folder.write(name, "text");
    }
    statusAfterSignal(SIGTERM, [this] {
        for (const char* const name : {"untouched", "written", "replaced", "new"}) {
            new RemovalOnSignal(folder.file(name), Removal::kNewFile);
        }
        folder.write("written", "");
        fs::remove(folder.path() / "replaced");
        folder.write("replaced", "other text");
        folder.write("new", "text");
    });
    EXPECT_TRUE(folder.exists("untouched"));
    EXPECT_FALSE(folder.exists("written"));
    EXPECT_FALSE(folder.exists("replaced"));
    EXPECT_FALSE(folder.exists("new"));
}

TEST(DeferredSignalTest, ComesAtTheEnd) {
    const TemporaryFolder folder;
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        folder.write("removed", "text");
        const int status = statusAfterSignal(SIGKILL, [&] {
            new RemovalOnSignal(folder.file("removed"));
            const DeferredSignal deferred;
            const bool hasComeTooEarly = DeferredSignal::hasCome();
            raise(number);
            if (!hasComeTooEarly && DeferredSignal::hasCome() && folder.exists("removed")) {
                folder.write("done" + std::to_string(number), "");
            }
        });
        EXPECT_TRUE(isEndedBy(number, status)) << status;
        EXPECT_TRUE(folder.exists("done" + std::to_string(number)));
        EXPECT_FALSE(folder.exists("removed"));
    }
}

TEST(DeferredSignalTest, ASecondOneEndsTheProcessAtOnce) {
    const TemporaryFolder folder;
    for (const int second : {SIGINT, SIGHUP, SIGTERM}) {
        folder.write("removed", "text");
        const int status = statusAfterSignal(SIGKILL, [&] {
            const RemovalOnSignal removal(folder.file("removed"));
            const DeferredSignal deferred;
            raise(SIGINT);
            raise(second);
            folder.write("reached", "");
        });
        EXPECT_TRUE(isEndedBy(second, status)) << status;
        EXPECT_FALSE(folder.exists("removed"));
        EXPECT_FALSE(folder.exists("reached"));
    }
}

TEST(DeferredSignalTest, SigquitWaitsForNobody) {
    const int status = statusAfterSignal(SIGQUIT, [] { new DeferredSignal(); });
    EXPECT_TRUE(isEndedBy(SIGQUIT, status)) << status;
}

TEST(DeferredSignalTest, AnIgnoredOneStaysIgnored) {
    const int status = statusAfterSignal(SIGHUP, [] {
        std::signal(SIGHUP, SIG_IGN);
        const DeferredSignal deferred;
        raise(SIGHUP);
        if (DeferredSignal::hasCome()) {
            _exit(9);
        }
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST(DeferredSignalTest, LeavesTheHandlersAsTheyWere) {
    struct sigaction before {};
    struct sigaction after {};
    sigaction(SIGTERM, nullptr, &before);
    {
        const DeferredSignal deferred;
        const RemovalOnSignal removal("/none");
    }
    sigaction(SIGTERM, nullptr, &after);
    EXPECT_EQ(after.sa_handler, before.sa_handler);
    EXPECT_FALSE(DeferredSignal::hasCome());
}

TEST(HeldSignalsTest, ComeWhenNobodyHoldsThemAnyMore) {
    const int status = statusAfterSignal(SIGUSR1, [] {
        std::signal(SIGUSR1, SIG_IGN);
        std::optional<HeldSignals> held(std::in_place);
        raise(SIGTERM);
        std::signal(SIGTERM, [](int) { _exit(7); });
        held.reset();
    });
    ASSERT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 7);
}

}  // namespace
}  // namespace marrowpress
