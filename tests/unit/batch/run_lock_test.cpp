#include "cli/batch/run_lock.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using Kind = RunLock::Kind;

TEST(RunLockTest, SharedLocksGoTogetherAndOneAloneWaits) {
    const TemporaryFolder folder;
    const RunLock first(folder.path());
    const RunLock second(folder.path());
    EXPECT_TRUE(first.tryToHold(Kind::kShared));
    EXPECT_TRUE(second.tryToHold(Kind::kShared));
    EXPECT_FALSE(first.tryToHold(Kind::kAlone));
}

TEST(RunLockTest, TwoThatWaitToBeAloneDoNotBlockEachOther) {
    const TemporaryFolder folder;
    const RunLock first(folder.path());
    const RunLock second(folder.path());
    ASSERT_TRUE(first.tryToHold(Kind::kShared));
    ASSERT_TRUE(second.tryToHold(Kind::kShared));
    EXPECT_FALSE(first.tryToHold(Kind::kAlone));
    EXPECT_TRUE(second.tryToHold(Kind::kAlone)) << "the first holds nothing while it waits";
    EXPECT_FALSE(first.tryToHold(Kind::kShared));
}

TEST(RunLockTest, TheLockGoesWithItsOwner) {
    const TemporaryFolder folder;
    {
        const RunLock first(folder.path());
        ASSERT_TRUE(first.tryToHold(Kind::kAlone));
    }
    EXPECT_TRUE(RunLock(folder.path()).tryToHold(Kind::kAlone));
}

TEST(RunLockTest, WithoutAFolderNothingIsHeld) {
    const TemporaryFolder folder;
    EXPECT_TRUE(RunLock(folder.path() / "none").tryToHold(Kind::kAlone));
}

}  // namespace
}  // namespace marrowpress
