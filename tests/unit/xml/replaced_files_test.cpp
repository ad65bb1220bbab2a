#include "xml/replaced_files.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

TEST(ReplacedFilesTest, RemembersTheLastRightsOfAFile) {
    const TemporaryFolder folder;
    folder.write("a", "x");
    ReplacedFiles files;
    EXPECT_EQ(files.modeOf(folder.file16("a")), std::nullopt);
    for (const mode_t mode : {0600U, 0644U, 0440U}) {
        fs::permissions(folder.path() / "a", static_cast<fs::perms>(mode));
        files.note(folder.file16("a"));
        EXPECT_EQ(files.modeOf(folder.file16("a")), mode);
    }
    fs::remove(folder.path() / "a");
    files.note(folder.file16("a"));
    EXPECT_EQ(files.modeOf(folder.file16("a")), 0440U) << "nothing stands there any more";
}

TEST(ReplacedFilesTest, WhatIsNoRegularFileHasNone) {
    const TemporaryFolder folder;
    folder.write("real", "x");
    fs::create_symlink("real", folder.path() / "link");
    ReplacedFiles files;
    for (const char* const name : {"link", "none", "."}) {
        files.note(folder.file16(name));
        EXPECT_EQ(files.modeOf(folder.file16(name)), std::nullopt) << name;
    }
}

}  // namespace
}  // namespace marrowpress
