#include "host/file_text.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <system_error>

#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class ReadFileTest : public testing::Test {
protected:
    /// What is said about a file that can't be read.
    std::string faultOf(const std::string& path, std::size_t mostBytes = kNoLimit) const {
        try {
            readFile(path, mostBytes);
            return "(none)";
        } catch (const std::system_error& fault) {
            return fault.what();
        }
    }

    TemporaryFolder folder;
};

TEST_F(ReadFileTest, GivesAllBytes) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    EXPECT_EQ(readFile(folder.write("bytes", bytes)), bytes);
    EXPECT_EQ(readFile(folder.write("empty", "")), "");
}

TEST_F(ReadFileTest, GivesFilesOfEveryLength) {
    for (const std::size_t length : {65535U, 65536U, 65537U, 200000U}) {
        const std::string text(length, 'x');
        EXPECT_EQ(readFile(folder.write("long", text)), text) << length;
    }
}

TEST_F(ReadFileTest, NamesThePathAndTheReason) {
    EXPECT_EQ(faultOf(folder.file("none")), folder.file("none") + ": No such file or directory");
    EXPECT_EQ(faultOf(folder.path().string()), folder.path().string() + ": Is a directory");
    const std::string closed = folder.write("closed", "x");
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    std::filesystem::permissions(closed, std::filesystem::perms::none);
    const WithoutRights nobody;
    EXPECT_EQ(faultOf(closed), closed + ": Permission denied");
}

TEST_F(ReadFileTest, ReadsNoMoreThanItMay) {
    for (const std::size_t most : {0U, 1U, 65535U, 65536U, 65537U, 200000U}) {
        const std::string text(most, 'x');
        EXPECT_EQ(readFile(folder.write("text", text), most), text) << most;
        const std::string longer = folder.write("longer", text + "x");
        EXPECT_EQ(faultOf(longer, most), longer + ": File too large") << most;
    }
    const Watchdog watchdog(60);
    EXPECT_EQ(faultOf("/dev/zero", kMostInputBytes), "/dev/zero: File too large");
}

TEST_F(ReadFileTest, LeavesNothingOpen) {
    const std::string path = folder.write("a", "x");
    readFile(path);
    EXPECT_FALSE(isOpenInProcess(path));
    EXPECT_NE(faultOf(folder.path().string()), "(none)");
    EXPECT_FALSE(isOpenInProcess(folder.path().string()));
}

}  // namespace
}  // namespace marrowpress
