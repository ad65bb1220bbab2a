#include "cli/scratch_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "tests/support/current_folder.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Another TMPDIR for the length of a scope; null: none.
class TmpDir {
public:
    explicit TmpDir(const char* value) {
        if (const char* const before = std::getenv("TMPDIR")) {
            before_ = before;
        }
        set(value);
    }
    TmpDir(const TmpDir&) = delete;
    TmpDir& operator=(const TmpDir&) = delete;
    ~TmpDir() { set(before_ ? before_->c_str() : nullptr); }

private:
    static void set(const char* value) {
        if (value) {
            setenv("TMPDIR", value, 1);
        } else {
            unsetenv("TMPDIR");
        }
    }

    std::optional<std::string> before_;
};

/// Why there is no folder below this TMPDIR; "" when there is one.
std::string refusalFor(const std::string& value) {
    const TmpDir tmpDir(value.c_str());
    try {
        const ScratchFolder scratch;
        return "";
    } catch (const std::runtime_error& refusal) {
        return refusal.what();
    }
}

class ScratchFolderTest : public testing::Test {
protected:
    bool isEmpty() const { return fs::is_empty(folder.path()); }

    TemporaryFolder folder;
};

TEST_F(ScratchFolderTest, IsBelowTmpDirAndPrivate) {
    const TmpDir tmpDir(folder.path().c_str());
    const ScratchFolder scratch;
    EXPECT_EQ(scratch.path().parent_path(), folder.path());
    struct stat status {};
    ASSERT_EQ(stat(scratch.path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, mode_t{S_IFDIR | 0700});
    const ScratchFolder other;
    EXPECT_NE(other.path(), scratch.path());
}

TEST_F(ScratchFolderTest, WithoutTmpDirIsBelowTmp) {
    for (const char* const value : {static_cast<const char*>(nullptr), ""}) {
        const TmpDir tmpDir(value);
        EXPECT_EQ(ScratchFolder().path().parent_path(), "/tmp");
    }
}

TEST_F(ScratchFolderTest, IsAbsoluteAndNormal) {
    const CurrentFolder current(folder.path());
    fs::create_directory("tmp");
    const TmpDir tmpDir("tmp/../tmp/");
    EXPECT_EQ(ScratchFolder().path().parent_path(), folder.path() / "tmp");
}

TEST_F(ScratchFolderTest, IsGoneAtTheEndWithAllThatIsInIt) {
    const TmpDir tmpDir(folder.path().c_str());
    {
        const ScratchFolder scratch;
        fs::create_directories(scratch.path() / "a/b");
        std::ofstream(scratch.path() / "a/b/file") << "text";
    }
    EXPECT_TRUE(isEmpty());
}

TEST_F(ScratchFolderTest, IsGoneWhenAFolderIsLeftByAnException) {
    const TmpDir tmpDir(folder.path().c_str());
    EXPECT_THROW(
        {
            const ScratchFolder scratch;
            throw std::runtime_error("left");
        },
        std::runtime_error);
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

TEST_F(ScratchFolderTest, SaysWhyItCannotBeMade) {
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

TEST_F(ScratchFolderTest, IsNowhereThatTheClientCannotRead) {
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
