#include "cli/memory_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

namespace marrowpress {
namespace {

TEST(MemoryFileTest, WhatWasFilledInIsReadFromTheBeginning) {
    const MemoryFile file("test");
    file.fill("some words");
    std::string bytes(10, ' ');
    EXPECT_EQ(read(file.descriptor(), bytes.data(), bytes.size()), 10);
    EXPECT_EQ(bytes, "some words");
    EXPECT_EQ(file.text(), "some words") << "wherever its position is";
}

TEST(MemoryFileTest, OneThatNobodyWroteToIsEmpty) {
    EXPECT_EQ(MemoryFile("test").text(), "");
}

TEST(MemoryFileTest, IsNotThereForOtherPrograms) {
    const MemoryFile file("test");
    EXPECT_NE(fcntl(file.descriptor(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(TellTest, WritesTheWholeTextBehindWhatIsThere) {
    const MemoryFile file("test");
    const std::string large(1 << 20, 'x');
    tell(file.descriptor(), "begin ");
    tell(file.descriptor(), large);
    EXPECT_EQ(file.text(), "begin " + large);
}

TEST(TellTest, WhatCannotBeWrittenIsLeftOut) {
    tell(-1, "nobody listens");
    const MemoryFile file("test");
    EXPECT_EQ(file.text(), "");
}

}  // namespace
}  // namespace marrowpress
