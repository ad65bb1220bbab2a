#include "cli/output_folder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class OutputFolderTest : public testing::Test {
protected:
    /// The fault of the folder, named as it is below the test's own; "" when there is none.
    std::string faultOf(const std::string& name) const {
        const auto foreseen = findOutputFolderFault(folder.path() / name, name);
        const std::string fault = OutputFolder(folder.path() / name, name).fault().value_or("");
        EXPECT_EQ(foreseen.value_or(""), fault);
        return fault;
    }

    TemporaryFolder folder;
};

TEST_F(OutputFolderTest, IsMadeWithThoseAboveIt) {
    const OutputFolder output(folder.path() / "a/b/c", "a/b/c");
    EXPECT_EQ(output.fault(), std::nullopt);
    EXPECT_TRUE(fs::is_directory(folder.path() / "a/b/c"));
}

TEST_F(OutputFolderTest, IsRemovedAgainWhenItStaysEmpty) {
    EXPECT_EQ(faultOf("a/b/c"), "");
    EXPECT_FALSE(folder.exists("a"));
}

TEST_F(OutputFolderTest, IsRemovedAgainWhenASignalComes) {
    const auto endBySignal = [this](const std::string& written) {
        const pid_t child = fork();
        if (child == 0) {
            const OutputFolder output(folder.path() / "a/b/c", "a/b/c");
            const RemovalOnSignal unfinished(folder.write("a/b/c/unfinished", ""));
            if (!written.empty()) {
                folder.write(written, "text");
            }
            raise(SIGTERM);
            _exit(0);
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status)) << status;
    };
    endBySignal("");
    EXPECT_FALSE(folder.exists("a"));
    endBySignal("a/b/file");
    EXPECT_FALSE(folder.exists("a/b/c"));
    EXPECT_TRUE(folder.exists("a/b/file"));
}

TEST_F(OutputFolderTest, StaysWithWhatIsInIt) {
    {
        const OutputFolder output(folder.path() / "a/b/c", "a/b/c");
        folder.write("a/b/file", "text");
    }
    EXPECT_FALSE(folder.exists("a/b/c"));
    EXPECT_TRUE(folder.exists("a/b/file"));
}

TEST_F(OutputFolderTest, StaysWhenItWasThere) {
    fs::create_directory(folder.path() / "a");
    EXPECT_EQ(faultOf("a/b"), "");
    EXPECT_EQ(faultOf("a"), "");
    EXPECT_TRUE(folder.exists("a"));
    EXPECT_FALSE(folder.exists("a/b"));
}

TEST_F(OutputFolderTest, MayBeALink) {
    fs::create_directory(folder.path() / "a");
    fs::create_directory_symlink("a", folder.path() / "link");
    EXPECT_EQ(faultOf("link"), "");
    EXPECT_EQ(faultOf("link/b"), "");
    EXPECT_TRUE(folder.exists("link"));
}

TEST_F(OutputFolderTest, IsNothingButAFolder) {
    folder.write("file", "");
    EXPECT_EQ(faultOf("file"), "--output: file is no folder");
    EXPECT_EQ(faultOf("file/a"), "--output: cannot make the folder file/a: Not a directory");
    fs::create_symlink("none", folder.path() / "link");
    EXPECT_NE(faultOf("link"), "");
}

TEST_F(OutputFolderTest, MustBeWritable) {
    fs::create_directory(folder.path() / "ro");
    fs::permissions(folder.path() / "ro", fs::perms(0555));
    fs::permissions(folder.path(), fs::perms(0755));
    const WithoutRights noRights;
    EXPECT_EQ(faultOf("ro"), "--output: cannot write to ro: Permission denied");
    EXPECT_EQ(faultOf("ro/a/b"), "--output: cannot make the folder ro/a/b: Permission denied");
}

TEST_F(OutputFolderTest, WhatWasMadeBeforeAFaultIsRemoved) {
    const std::string longName(300, 'n');
    EXPECT_EQ(faultOf("a/b/" + longName),
              "--output: cannot make the folder a/b/" + longName + ": File name too long");
    EXPECT_FALSE(folder.exists("a"));
}

TEST_F(OutputFolderTest, TheCheckLeavesNothing) {
    EXPECT_FALSE(findWriteError(folder.path()));
    EXPECT_EQ(findOutputFolderFault(folder.path() / "a/b", "a/b"), std::nullopt);
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST_F(OutputFolderTest, AnUnreadableFolderMayBeWritten) {
    fs::create_directory(folder.path() / "drop");
    fs::permissions(folder.path() / "drop", fs::perms(0333));
    fs::permissions(folder.path(), fs::perms(0755));
    const WithoutRights noRights;
    EXPECT_FALSE(findWriteError(folder.path() / "drop"));
}

TEST(ShownFolderTest, IsAsItWasGiven) {
    EXPECT_EQ(shownFolderOf("ro/book.dita"), "ro");
    EXPECT_EQ(shownFolderOf("../ro/book.dita"), "../ro");
    EXPECT_EQ(shownFolderOf("/book.dita"), "/");
    EXPECT_EQ(shownFolderOf("book.dita"), "the current folder");
}

TEST_F(OutputFolderTest, NamesTheArgumentThatItIsFor) {
    folder.write("file", "");
    EXPECT_EQ(OutputFolder(folder.path() / "file", "file", "--copy-media").fault(),
              "--copy-media: file is no folder");
}

}  // namespace
}  // namespace marrowpress
