#include "results/file_stamp.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

TEST(FileStampTest, TellsAFileFromOneThatWasWrittenLater) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "text");
    const std::optional<FileStamp> first = stampOf(path);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->size, 4U);
    EXPECT_EQ(stampOf(path), first);
    std::this_thread::sleep_for(std::chrono::nanoseconds(2 * kFileClockTick));
    folder.write("a", "next");
    EXPECT_NE(stampOf(path), first);
}

TEST(FileStampTest, AnOldTimeOfModificationDoesNotHideAChange) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "text");
    const std::optional<FileStamp> first = stampOf(path);
    const fs::file_time_type time = fs::last_write_time(path);
    std::this_thread::sleep_for(std::chrono::nanoseconds(2 * kFileClockTick));
    folder.write("a", "next");
    fs::last_write_time(path, time);
    ASSERT_TRUE(first && stampOf(path));
    EXPECT_EQ(stampOf(path)->modified, first->modified);
    EXPECT_NE(stampOf(path), first);
}

TEST(FileStampTest, FollowsLinksAndKnowsRegularFilesOnly) {
    const TemporaryFolder folder;
    folder.write("a", "text");
    fs::create_symlink("a", folder.file("link"));
    EXPECT_EQ(stampOf(folder.file("link")), stampOf(folder.file("a")));
    EXPECT_EQ(stampOf(folder.file("none")), std::nullopt);
    EXPECT_EQ(stampOf(folder.path()), std::nullopt);
}

TEST(FileStampTest, TheClockIsThatOfTheFiles) {
    const TemporaryFolder folder;
    const std::int64_t before = earliestStampFromNow();
    const std::optional<FileStamp> stamp = stampOf(folder.write("a", ""));
    ASSERT_TRUE(stamp);
    EXPECT_GE(stamp->changed, before);
    EXPECT_LE(stamp->changed, latestStampUntilNow());
}

TEST(FileStampTest, OneOfWholeSecondsIsUncertain) {
    constexpr std::int64_t kSecond = 1'000'000'000;
    EXPECT_EQ(uncertaintyOf({0, 5 * kSecond, 5 * kSecond + 1, 0, 0}), 0)
        << "the other time can be set to anything";
    EXPECT_EQ(uncertaintyOf({0, 5, 5 * kSecond, 0, 0}), 2 * kSecond);
}

}  // namespace
}  // namespace marrowpress
