#include "support/folder_lock.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/current_folder.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

TEST(FolderLockTest, KeepsOthersOutWhileItLives) {
    const TemporaryFolder folder;
    {
        const FolderLock first(folder.file16("."));
        EXPECT_FALSE(first.isTaken());
        EXPECT_TRUE(FolderLock(folder.file16(".")).isTaken());
        EXPECT_TRUE(FolderLock(folder.file16("")).isTaken()) << "another spelling";
    }
    EXPECT_FALSE(FolderLock(folder.file16(".")).isTaken());
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(FolderLockTest, FoldersBesideAndBelowAreOthers) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path() / "a/b");
    const FolderLock lock(folder.file16("a"));
    EXPECT_FALSE(FolderLock(folder.file16("a/b")).isTaken());
    EXPECT_FALSE(FolderLock(folder.file16(".")).isTaken());
}

TEST(FolderLockTest, NoFolderIsTheCurrentOne) {
    const TemporaryFolder folder;
    const CurrentFolder current(folder.path());
    const FolderLock lock(u"");
    EXPECT_TRUE(FolderLock(folder.file16(".")).isTaken());
}

TEST(FolderLockTest, WhatCannotBeOpenedLocksNobodyOut) {
    const TemporaryFolder folder;
    folder.write("file", "x");
    for (const char* const name : {"none", "file"}) {
        const FolderLock lock(folder.file16(name));
        EXPECT_FALSE(lock.isTaken()) << name;
        EXPECT_FALSE(FolderLock(folder.file16(name)).isTaken()) << name;
    }
}

}  // namespace
}  // namespace marrowpress
