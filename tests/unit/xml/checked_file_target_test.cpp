#include "xml/checked_file_target.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>

#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

void put(CheckedFileFormatTarget& target, const std::string& text) {
    target.writeChars(reinterpret_cast<const XMLByte*>(text.data()), text.size(), nullptr);
}

/// The number of the system error that opening `path` fails with; 0 if it doesn't.
int openingFailure(const std::u16string& path) {
    try {
        const CheckedFileFormatTarget target(path);
        return 0;
    } catch (const std::system_error& failure) {
        return failure.code().value();
    }
}

class CheckedFileFormatTargetTest : public testing::Test {
protected:
    TemporaryFolder folder;
};

TEST_F(CheckedFileFormatTargetTest, WritesWhatItWasGivenInOrder) {
    std::string expected;
    CheckedFileFormatTarget target(folder.file16("a.xml"));
    for (int line = 0; line < 20000; ++line) {
        const std::string text = "line " + std::to_string(line) + "\n";
        put(target, text);
        expected += text;
    }
    put(target, std::string(200000, 'x'));
    expected += std::string(200000, 'x');
    put(target, "end");
    expected += "end";
    target.close();
    EXPECT_EQ(folder.read("a.xml"), expected);
}

TEST_F(CheckedFileFormatTargetTest, EmptiesAnExistingFile) {
    folder.write("a.xml", "a long old text");
    CheckedFileFormatTarget target(folder.file16("a.xml"));
    EXPECT_EQ(folder.read("a.xml"), "");
    put(target, "new");
    target.close();
    EXPECT_EQ(folder.read("a.xml"), "new");
}

TEST_F(CheckedFileFormatTargetTest, GivesANewFileTheUsualRights) {
    const mode_t mask = ::umask(022);
    CheckedFileFormatTarget(folder.file16("größe.xml")).close();
    ::umask(mask);
    struct stat status {};
    ASSERT_EQ(::stat(folder.file("größe.xml").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0644U);
}

TEST_F(CheckedFileFormatTargetTest, GivesTheFileTheRightsThatItIsToHave) {
    const mode_t mask = ::umask(077);
    for (const mode_t mode : {0600U, 0666U, 0444U}) {
        CheckedFileFormatTarget target(folder.file16("a.xml"), mode);
        put(target, "new");
        target.close();
        struct stat status {};
        EXPECT_EQ(::stat(folder.file("a.xml").c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, mode);
        EXPECT_EQ(folder.read("a.xml"), "new");
        ASSERT_EQ(::unlink(folder.file("a.xml").c_str()), 0);
    }
    ::umask(mask);
}

TEST_F(CheckedFileFormatTargetTest, TakesThePlaceOfALinkAndLeavesWhatItLeadsTo) {
    folder.write("victim", "kept");
    ASSERT_EQ(::symlink("victim", folder.file("soft").c_str()), 0);
    ASSERT_EQ(::symlink("none", folder.file("dangling").c_str()), 0);
    ASSERT_EQ(::symlink("soft-loop", folder.file("soft-loop").c_str()), 0);
    ASSERT_EQ(::link(folder.file("victim").c_str(), folder.file("hard").c_str()), 0);
    for (const char* const name : {"soft", "dangling", "soft-loop", "hard"}) {
        CheckedFileFormatTarget target(folder.file16(name));
        put(target, "new");
        target.close();
        EXPECT_EQ(folder.read(name), "new") << name;
        struct stat status {};
        ASSERT_EQ(::lstat(folder.file(name).c_str(), &status), 0);
        EXPECT_TRUE(S_ISREG(status.st_mode)) << name;
    }
    EXPECT_EQ(folder.read("victim"), "kept");
    EXPECT_FALSE(folder.exists("none"));
}

TEST_F(CheckedFileFormatTargetTest, LeavesAFileThatMustNotBeWritten) {
    folder.write("a.xml", "kept");
    ASSERT_EQ(::chmod(folder.file(".").c_str(), 0777), 0);
    ASSERT_EQ(::chmod(folder.file("a.xml").c_str(), 0444), 0);
    const WithoutRights nobody;
    EXPECT_EQ(openingFailure(folder.file16("a.xml")), EACCES);
    EXPECT_EQ(folder.read("a.xml"), "kept");
}

TEST_F(CheckedFileFormatTargetTest, ThrowsWhereNoRegularFileCanBeOpened) {
    const Watchdog watchdog(60);
    makePipe(folder.file("pipe"));
    makePipe(folder.file("read"));
    const int reader = ::open(folder.file("read").c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(openingFailure(folder.file16("missing/a.xml")), ENOENT);
    EXPECT_EQ(openingFailure(folder.file16("")), EISDIR);
    EXPECT_EQ(openingFailure(u""), ENOENT);
    EXPECT_EQ(openingFailure(folder.file16("pipe")), EINVAL);
    EXPECT_EQ(openingFailure(folder.file16("read")), EINVAL);
    EXPECT_EQ(openingFailure(u"/dev/null"), EINVAL);
    EXPECT_EQ(openingFailure(u"/dev/full"), EINVAL);
    ::close(reader);
}

TEST_F(CheckedFileFormatTargetTest, LeavesNoHandleBehind) {
    const auto nextHandle = [] {
        const int handle = ::open("/dev/null", O_RDONLY);
        ::close(handle);
        return handle;
    };
    const int before = nextHandle();
    openingFailure(u"/dev/null");
    openingFailure(folder.file16("a.xml"));
    CheckedFileFormatTarget(folder.file16("b.xml")).close();
    EXPECT_EQ(nextHandle(), before);
}

TEST_F(CheckedFileFormatTargetTest, ClosingTellsOfAFullDisk) {
    CheckedFileFormatTarget target(folder.file16("a.xml"));
    put(target, "0123456789");
    const FileSizeLimit limit(4);
    EXPECT_THROW(target.close(), std::system_error);
    EXPECT_EQ(folder.read("a.xml"), "0123");
}

TEST_F(CheckedFileFormatTargetTest, WritingTellsOfAFullDisk) {
    CheckedFileFormatTarget target(folder.file16("a.xml"));
    const FileSizeLimit limit(70000);
    const auto writeAll = [&] {
        for (int piece = 0; piece < 100; ++piece) {
            put(target, std::string(4000, 'x'));
        }
    };
    EXPECT_THROW(writeAll(), std::system_error);
    EXPECT_EQ(folder.read("a.xml").size(), 70000U);
}

}  // namespace
}  // namespace marrowpress
