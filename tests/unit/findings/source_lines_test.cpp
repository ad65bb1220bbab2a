#include "findings/source_lines.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class SourceLinesTest : public testing::Test {
protected:
    TemporaryFolder folder_;
    SourceLines lines_;
};

TEST_F(SourceLinesTest, EndAsAnXmlParserCountsThem) {
    const std::string file = folder_.write("a", "one\ntwo\r\nthree\rfour\n\nsix");
    EXPECT_EQ(lines_.line(file, 1), "one");
    EXPECT_EQ(lines_.line(file, 2), "two");
    EXPECT_EQ(lines_.line(file, 3), "three");
    EXPECT_EQ(lines_.line(file, 4), "four");
    EXPECT_EQ(lines_.line(file, 5), "");
    EXPECT_EQ(lines_.line(file, 6), "six");
    EXPECT_FALSE(lines_.line(file, 0));
    EXPECT_FALSE(lines_.line(file, 7));
}

TEST_F(SourceLinesTest, AByteOrderMarkBelongsToNone) {
    EXPECT_EQ(lines_.line(folder_.write("a", "\xEF\xBB\xBF<a/>\n"), 1), "<a/>");
    EXPECT_FALSE(lines_.line(folder_.write("b", "\xEF\xBB\xBF"), 1));
}

TEST_F(SourceLinesTest, WhatIsNoTextFileHasNone) {
    makePipe(folder_.file("pipe"));
    for (const std::string& file :
         {folder_.file("none"), folder_.path().string(), folder_.file("pipe"),
          folder_.write("utf16", std::string("\xFF\xFE<\0\n\0", 6)), folder_.write("empty", ""),
          std::string(5000, 'x'), std::string()}) {
        EXPECT_FALSE(lines_.line(file, 1)) << file;
    }
}

TEST_F(SourceLinesTest, AFileThatCannotBeOpenedHasNone) {
    const std::string file = folder_.write("a", "<a/>\n");
    const NoFileHandles none;
    EXPECT_FALSE(lines_.line(file, 1));
}

TEST_F(SourceLinesTest, ALargeFileHasNone) {
    const std::string file = folder_.write("large", "a\n");
    std::filesystem::resize_file(file, 16'000'001);
    EXPECT_FALSE(lines_.line(file, 1));
}

TEST_F(SourceLinesTest, AFileIsReadOnce) {
    const std::string file = folder_.write("a", "before\nx");
    EXPECT_EQ(lines_.line(file, 1), "before");
    folder_.write("a", "after\nx");
    EXPECT_EQ(lines_.line(file, 1), "before");
    EXPECT_EQ(lines_.line(file, 2), "x");
}

TEST_F(SourceLinesTest, LargeFilesAreNotAllKept) {
    const std::string file = folder_.write("a", "before");
    EXPECT_EQ(lines_.line(file, 1), "before");
    const std::string large = "x\n" + std::string(3'000'000, 'x');
    EXPECT_EQ(lines_.line(folder_.write("b", large), 1), "x");
    EXPECT_EQ(lines_.line(folder_.write("c", large), 1), "x");
    folder_.write("a", "after");
    folder_.write("d", "d");
    EXPECT_EQ(lines_.line(folder_.file("d"), 1), "d");
    EXPECT_EQ(lines_.line(file, 1), "after");
}

}  // namespace
}  // namespace marrowpress
