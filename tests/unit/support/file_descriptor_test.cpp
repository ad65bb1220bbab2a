#include "support/file_descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <utility>

#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class FileDescriptorTest : public testing::Test {
protected:
    FileDescriptor open(const char* name) const {
        return FileDescriptor(::open(folder_.write(name, "").c_str(), O_RDONLY | O_CLOEXEC));
    }
    bool isOpen(const char* name) const { return isOpenInProcess(folder_.file(name)); }

private:
    TemporaryFolder folder_;
};

TEST_F(FileDescriptorTest, ClosesItsFileWithItself) {
    {
        const FileDescriptor descriptor = open("a");
        EXPECT_TRUE(descriptor);
        EXPECT_TRUE(isOpen("a"));
    }
    EXPECT_FALSE(isOpen("a"));
}

TEST_F(FileDescriptorTest, MayHaveNone) {
    const FileDescriptor none;
    EXPECT_FALSE(none);
    EXPECT_FALSE(FileDescriptor(::open("/none/at/all", O_RDONLY)));
}

TEST_F(FileDescriptorTest, HandsItsFileOn) {
    FileDescriptor first = open("a");
    const FileDescriptor second(std::move(first));
    EXPECT_TRUE(second);
    EXPECT_TRUE(isOpen("a"));
}

TEST_F(FileDescriptorTest, ClosesTheFileThatAnotherTakesThePlaceOf) {
    FileDescriptor descriptor = open("a");
    descriptor = open("b");
    EXPECT_FALSE(isOpen("a"));
    EXPECT_TRUE(isOpen("b"));
}

TEST_F(FileDescriptorTest, ClosesNothingThatItGaveAway) {
    int number = -1;
    {
        FileDescriptor descriptor = open("a");
        number = descriptor.release();
        EXPECT_FALSE(descriptor);
    }
    EXPECT_TRUE(isOpen("a"));
    EXPECT_EQ(::close(number), 0);
}

}  // namespace
}  // namespace marrowpress
