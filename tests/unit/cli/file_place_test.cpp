#include "cli/file_place.h"

#include <gtest/gtest.h>

#include "tests/support/current_folder.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class FilePlaceTest : public testing::Test {
protected:
    FilePlaceTest() {
        folder.write("folder/file", "");
        fs::create_directory_symlink("folder", folder.path() / "linked");
    }

    bool areOne(const std::string& left, const std::string& right) const {
        return haveOnePlace(folder.path() / left, folder.path() / right);
    }

    TemporaryFolder folder;
};

TEST_F(FilePlaceTest, IsTheSameByAnySpelling) {
    EXPECT_TRUE(areOne("folder/file", "linked/file"));
    EXPECT_TRUE(areOne("folder/file", "linked/../folder//./file"));
    EXPECT_TRUE(areOne("folder/none", "linked/./none"));
    EXPECT_TRUE(areOne("none/a/../b", "none/b"));
    EXPECT_FALSE(areOne("folder/file", "folder/none"));
    EXPECT_FALSE(areOne("folder/file", "file"));
    const CurrentFolder current(folder.path() / "folder");
    EXPECT_TRUE(haveOnePlace("file", folder.path() / "linked/file"));
    EXPECT_EQ(placeOf("none"), folder.path() / "folder/none");
}

TEST_F(FilePlaceTest, IsWhereALinkLeads) {
    fs::create_symlink("folder/file", folder.path() / "link");
    fs::create_symlink("link", folder.path() / "second");
    fs::create_hard_link(folder.path() / "folder/file", folder.path() / "hard");
    EXPECT_TRUE(areOne("second", "folder/file"));
    EXPECT_TRUE(areOne("hard", "second"));
}

TEST_F(FilePlaceTest, IsWhereALinkToNothingWouldMakeAFile) {
    fs::create_symlink("linked/none", folder.path() / "dangling");
    fs::create_symlink(folder.path() / "dangling", folder.path() / "folder/second");
    EXPECT_EQ(placeOf(folder.path() / "folder/second"), folder.path() / "folder/none");
    EXPECT_TRUE(areOne("dangling", "folder/none"));
    EXPECT_FALSE(areOne("dangling", "none"));
}

TEST_F(FilePlaceTest, ALoopOfLinksEnds) {
    fs::create_symlink("b", folder.path() / "a");
    fs::create_symlink("a", folder.path() / "b");
    EXPECT_FALSE(areOne("a", "folder/file"));
}

}  // namespace
}  // namespace marrowpress
