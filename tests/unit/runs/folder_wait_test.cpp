#include "runs/folder_wait.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "marrowpress/publish_status.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

TEST(WaitForFolderTest, AFreeFolderIsNotWaitedFor) {
    const TemporaryFolder folder;
    EXPECT_TRUE(waitForFolder(folder.path(), {}));
    EXPECT_TRUE(waitForFolder(folder.file("none"), {}));
    EXPECT_TRUE(waitForFolder("", {}));
    const HeldFolder again(folder.path());
}

TEST(WaitForFolderTest, EndsWhenTheOtherRunDoesOrTheTimeIsOver) {
    const TemporaryFolder folder;
    {
        const HeldFolder held(folder.path());
        EXPECT_FALSE(waitForFolder(folder.path(), {}));
        const Clock::time_point begin = Clock::now();
        EXPECT_FALSE(waitForFolder(folder.path(), begin + milliseconds(100)));
        EXPECT_GE(Clock::now() - begin, milliseconds(100));
    }
    auto held = std::make_unique<HeldFolder>(folder.path());
    std::thread other([&] {
        std::this_thread::sleep_for(milliseconds(100));
        held.reset();
    });
    EXPECT_TRUE(waitForFolder(folder.path(), Clock::now() + kLongestFolderWait));
    other.join();
}

TEST(FolderHoldTest, KeepsOthersAwayWhileItLives) {
    const TemporaryFolder folder;
    {
        const FolderHold hold(folder.path(), {});
        EXPECT_FALSE(hold.isTaken());
        EXPECT_FALSE(waitForFolder(folder.path(), {}));
    }
    EXPECT_TRUE(waitForFolder(folder.path(), {}));
}

TEST(FolderHoldTest, EndsInVainWhereAnotherRunHoldsTheFolder) {
    const TemporaryFolder folder;
    const HeldFolder other(folder.path());
    EXPECT_TRUE(FolderHold(folder.path(), Clock::now() + milliseconds(50)).isTaken());
}

TEST(FolderHoldTest, HoldsNothingWithoutAFolder) {
    const TemporaryFolder folder;
    EXPECT_FALSE(FolderHold(folder.file("none"), {}).isTaken());
}

TEST(RunInTurnTest, ARunThatAThirdOneWasFasterThanIsMadeAgain) {
    const TemporaryFolder folder;
    const std::string path = folder.path().string();
    std::optional<FolderHold> third;
    int runs = 0;
    const RunOutcome outcome = runInTurn(
        path,
        [&] {
            third.reset();
            return true;
        },
        [&] {
            RunOutcome made;
            made.status = ++runs == 1 ? kRunFailed : 0;
            if (runs == 1) {
                third.emplace(path, std::chrono::steady_clock::now());
            }
            return made;
        });
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(runs, 2);
}

TEST(RunInTurnTest, ARunThatFailsByItselfIsNotMadeAgain) {
    const TemporaryFolder folder;
    int runs = 0;
    const RunOutcome outcome = runInTurn(
        folder.path().string(), [] { return true; },
        [&] {
            ++runs;
            RunOutcome made;
            made.status = kRunFailed;
            return made;
        });
    EXPECT_EQ(outcome.status, kRunFailed);
    EXPECT_EQ(runs, 1);
}

TEST(RunInTurnTest, WhoeverGivesUpMakesNone) {
    const TemporaryFolder folder;
    const RunOutcome outcome = runInTurn(
        folder.path().string(), [] { return false; },
        []() -> RunOutcome { throw std::logic_error("it was not its turn"); });
    EXPECT_TRUE(outcome.isFolderTaken);
}

}  // namespace
}  // namespace marrowpress
