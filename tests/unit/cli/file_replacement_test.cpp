#include "cli/file_replacement.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class FileReplacementTest : public testing::Test {
protected:
    std::size_t fileCount() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()));
    }

    TemporaryFolder folder;
};

TEST_F(FileReplacementTest, AFileIsMadeOrReplacedAndNothingElseStays) {
    EXPECT_EQ(replaceFile(folder.file("a.d"), "one"), std::nullopt);
    EXPECT_EQ(folder.read("a.d"), "one");
    EXPECT_EQ(replaceFile(folder.file("a.d"), "two"), std::nullopt);
    EXPECT_EQ(folder.read("a.d"), "two");
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileReplacementTest, ALinkStaysAndItsFileIsReplaced) {
    folder.write("a.d", "one");
    fs::create_symlink("a.d", folder.path() / "link.d");
    EXPECT_EQ(replaceFile(folder.file("link.d"), "two"), std::nullopt);
    EXPECT_TRUE(fs::is_symlink(folder.path() / "link.d"));
    EXPECT_EQ(folder.read("a.d"), "two");
}

TEST_F(FileReplacementTest, AFileStaysWhenItCannotBeReplaced) {
    folder.write("a.d", "one");
    // The name beside it is taken.
    fs::create_directory(folder.path() / "a.d_tmp");
    EXPECT_EQ(replaceFile(folder.file("a.d"), "two"), "Is a directory");
    EXPECT_EQ(folder.read("a.d"), "one");
    EXPECT_EQ(replaceFile(folder.file("none/a.d"), "two"), "No such file or directory");
}

TEST_F(FileReplacementTest, ADeviceIsWrittenTo) {
    EXPECT_EQ(replaceFile("/dev/null", "one"), std::nullopt);
    EXPECT_EQ(replaceFile("/dev/full", "one"), "No space left on device");
}

}  // namespace
}  // namespace marrowpress
