#include "cli/folder_wait.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

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

}  // namespace
}  // namespace marrowpress
