#include "runs/private_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "tests/support/current_folder.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tmp_dir.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Why there is no folder below this TMPDIR; "" when there is one.
std::string refusalFor(const std::string& value) {
    const TmpDir tmpDir(value.c_str());
    try {
        const PrivateFolder made;
        return "";
    } catch (const std::runtime_error& refusal) {
        return refusal.what();
    }
}

class PrivateFolderTest : public testing::Test {
protected:
    bool isEmpty() const { return fs::is_empty(folder.path()); }

    TemporaryFolder folder;
};

TEST_F(PrivateFolderTest, IsBelowTmpDirAndPrivate) {
    const TmpDir tmpDir(folder.path().c_str());
    const PrivateFolder made;
    EXPECT_EQ(made.path().parent_path(), folder.path());
    struct stat status {};
    ASSERT_EQ(stat(made.path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, mode_t{S_IFDIR | 0700});
    const PrivateFolder other;
    EXPECT_NE(other.path(), made.path());
}

TEST_F(PrivateFolderTest, WithoutTmpDirIsBelowTmp) {
    for (const char* const value : {static_cast<const char*>(nullptr), ""}) {
        const TmpDir tmpDir(value);
        EXPECT_EQ(PrivateFolder().path().parent_path(), "/tmp");
    }
}

TEST_F(PrivateFolderTest, IsAbsoluteAndNormal) {
    const CurrentFolder current(folder.path());
    fs::create_directory("tmp");
    const TmpDir tmpDir("tmp/../tmp/");
    EXPECT_EQ(PrivateFolder().path().parent_path(), folder.path() / "tmp");
}

TEST_F(PrivateFolderTest, IsGoneAtTheEndWithAllThatIsInIt) {
    const TmpDir tmpDir(folder.path().c_str());
    {
        const PrivateFolder made;
        fs::create_directories(made.path() / "a/b");
        std::ofstream(made.path() / "a/b/file") << "text";
    }
    EXPECT_TRUE(isEmpty());
}

TEST_F(PrivateFolderTest, IsGoneWhenAFolderIsLeftByAnException) {
    const TmpDir tmpDir(folder.path().c_str());
    EXPECT_THROW(
        {
            const PrivateFolder made;
            throw std::runtime_error("left");
        },
        std::runtime_error);
    EXPECT_TRUE(isEmpty());
}

TEST_F(PrivateFolderTest, SaysWhyItCannotBeMade) {
    EXPECT_EQ(refusalFor(folder.path().string()), "");
    const std::string missing = folder.file("none");
    EXPECT_EQ(refusalFor(missing),
              "cannot make a folder in " + missing + " (TMPDIR): No such file or directory");
    const std::string file = folder.write("file", "");
    EXPECT_EQ(refusalFor(file), "cannot make a folder in " + file + " (TMPDIR): Not a directory");
    fs::permissions(folder.path(), fs::perms::owner_all);
    const WithoutRights noRights;
    EXPECT_TRUE(refusalFor(folder.path().string()).ends_with("Permission denied"));
}

TEST_F(PrivateFolderTest, IsNowhereThatTheClientCannotRead) {
    for (const char* const name : {"a\\b", "\xE4"}) {
        fs::create_directory(folder.path() / name);
        EXPECT_NE(refusalFor(folder.file(name)), "") << name;
        EXPECT_TRUE(fs::is_empty(folder.path() / name)) << name;
    }
    fs::create_directory(folder.path() / "a #%20?\u00E4");
    EXPECT_EQ(refusalFor(folder.file("a #%20?\u00E4")), "");
}

}  // namespace
}  // namespace marrowpress
