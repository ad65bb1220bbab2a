#include "cli/scratch_folder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "tests/support/temporary_folder.h"
#include "tests/support/tmp_dir.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class ScratchFolderTest : public testing::Test {
protected:
    bool isEmpty() const { return fs::is_empty(folder.path()); }

    TemporaryFolder folder;
};

TEST_F(ScratchFolderTest, IsGoneAtTheEndWithAllThatIsInIt) {
    const TmpDir tmpDir(folder.path().c_str());
    {
        const ScratchFolder scratch;
        EXPECT_EQ(scratch.path().parent_path(), folder.path());
        std::ofstream(scratch.path() / "file") << "text";
    }
    EXPECT_TRUE(isEmpty());
}

TEST_F(ScratchFolderTest, IsGoneAfterASignalFromOutside) {
    const TmpDir tmpDir(folder.path().c_str());
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        if (child == 0) {
            alarm(60);
            const ScratchFolder scratch;
            fs::create_directories(scratch.path() / "a/b");
            std::ofstream(scratch.path() / "a/b/file") << "text";
            if (write(ready[1], "r", 1) == 1) {
                pause();
            }
            _exit(1);
        }
        close(ready[1]);
        char byte = 0;
        ASSERT_EQ(read(ready[0], &byte, 1), 1);
        close(ready[0]);
        EXPECT_FALSE(isEmpty());
        ASSERT_EQ(kill(child, number), 0);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number) << status;
        EXPECT_TRUE(isEmpty()) << number;
    }
}

}  // namespace
}  // namespace marrowpress
