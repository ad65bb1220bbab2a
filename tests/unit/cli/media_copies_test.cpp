#include "cli/media_copies.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "cli/file_failure.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class MediaCopiesTest : public testing::Test {
protected:
    MediaCopiesTest() { fs::create_directory(folder.path() / "media"); }

    MediaCopies newRun() const { return MediaCopies(folder.path() / "media"); }

    /// The name of the copy of a file, which was written before; "" when there is none.
    std::string nameOf(MediaCopies& copies, const std::string& name) const {
        const std::optional<fs::path> copy = copies.copyOf(folder.path() / name);
        if (!copy) {
            return "";
        }
        EXPECT_EQ(copy->parent_path(), folder.path() / "media");
        EXPECT_EQ(folder.read("media/" + copy->filename().string()), folder.read(name));
        return copy->filename();
    }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.path() / "media")) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    TemporaryFolder folder;
};

using Names = std::vector<std::string>;

TEST_F(MediaCopiesTest, AreWholeFilesUnderTheirNames) {
    folder.write("a/big.png", std::string(300000, 'x') + '\0' + "\xFF\r\n");
    folder.write("a/empty.png", "");
    folder.write("a/ü b#?%20.png", "odd");
    MediaCopies copies = newRun();
    EXPECT_EQ(nameOf(copies, "a/big.png"), "big.png");
    EXPECT_EQ(nameOf(copies, "a/empty.png"), "empty.png");
    EXPECT_EQ(nameOf(copies, "a/ü b#?%20.png"), "ü b#?%20.png");
    EXPECT_EQ(names(), (Names{"big.png", "empty.png", "ü b#?%20.png"}));
}

TEST_F(MediaCopiesTest, AreMadeOnceForAFile) {
    folder.write("a/x.png", "x");
    fs::create_symlink("x.png", folder.path() / "a/link.png");
    fs::create_hard_link(folder.path() / "a/x.png", folder.path() / "a/other.png");
    MediaCopies copies = newRun();
    EXPECT_EQ(nameOf(copies, "a/x.png"), "x.png");
    EXPECT_EQ(nameOf(copies, "a/../a/x.png"), "x.png");
    EXPECT_EQ(nameOf(copies, "a/link.png"), "x.png");
    EXPECT_EQ(nameOf(copies, "a/other.png"), "x.png");
    EXPECT_EQ(names(), Names{"x.png"});
}

TEST_F(MediaCopiesTest, FollowALinkToItsContent) {
    folder.write("a/x.png", "x");
    fs::create_symlink("x.png", folder.path() / "a/link.png");
    MediaCopies copies = newRun();
    EXPECT_EQ(nameOf(copies, "a/link.png"), "link.png");
    EXPECT_FALSE(fs::is_symlink(folder.path() / "media/link.png"));
}

TEST_F(MediaCopiesTest, KeepFilesOfOneNameApart) {
    for (const char* const name : {"a/x.png", "b/x.png", "c/x.png", "d/X.PNG", "e/x-2.png", "a/x",
                                   "b/x", "a/.x", "b/.x", "a/x.tar.gz", "b/x.tar.gz"}) {
        folder.write(name, name);
    }
    MediaCopies copies = newRun();
    EXPECT_EQ(nameOf(copies, "a/x.png"), "x.png");
    EXPECT_EQ(nameOf(copies, "b/x.png"), "x-2.png");
    EXPECT_EQ(nameOf(copies, "c/x.png"), "x-3.png");
    EXPECT_EQ(nameOf(copies, "d/X.PNG"), "X-4.PNG");
    EXPECT_EQ(nameOf(copies, "e/x-2.png"), "x-2-2.png");
    EXPECT_EQ(nameOf(copies, "a/x"), "x");
    EXPECT_EQ(nameOf(copies, "b/x"), "x-2");
    EXPECT_EQ(nameOf(copies, "a/.x"), ".x");
    EXPECT_EQ(nameOf(copies, "b/.x"), ".x-2");
    EXPECT_EQ(nameOf(copies, "a/x.tar.gz"), "x.tar.gz");
    EXPECT_EQ(nameOf(copies, "b/x.tar.gz"), "x.tar-2.gz");
    EXPECT_EQ(nameOf(copies, "b/x.png"), "x-2.png");
}

TEST_F(MediaCopiesTest, KeepTheNamesOfTheLastRun) {
    folder.write("a/x.png", "a");
    folder.write("b/x.png", "b");
    for (int time = 0; time < 3; ++time) {
        MediaCopies copies = newRun();
        EXPECT_EQ(nameOf(copies, "a/x.png"), "x.png");
        EXPECT_EQ(nameOf(copies, "b/x.png"), "x-2.png");
    }
    EXPECT_EQ(names(), (Names{"x-2.png", "x.png"}));
}

TEST_F(MediaCopiesTest, ReplaceNothingThatIsThere) {
    for (const std::string& old : {std::string("old"), std::string("xx"), std::string()}) {
        folder.write("media/x.png", old);
        folder.write("a/x.png", "x");
        MediaCopies copies = newRun();
        EXPECT_EQ(nameOf(copies, "a/x.png"), "x-2.png");
        EXPECT_EQ(folder.read("media/x.png"), old);
    }
    folder.write("media/y.png", std::string(200000, 'y') + "1");
    folder.write("a/y.png", std::string(200000, 'y') + "2");
    fs::create_directory(folder.path() / "media/z.png");
    folder.write("a/z.png", "z");
    fs::create_symlink(folder.path() / "elsewhere", folder.path() / "media/l.png");
    folder.write("a/l.png", "l");
    MediaCopies copies = newRun();
    EXPECT_EQ(nameOf(copies, "a/y.png"), "y-2.png");
    EXPECT_EQ(nameOf(copies, "a/z.png"), "z-2.png");
    EXPECT_EQ(nameOf(copies, "a/l.png"), "l-2.png");
    EXPECT_FALSE(folder.exists("elsewhere"));
}

TEST_F(MediaCopiesTest, TakeAFileThatIsThereWithTheSameContent) {
    const std::string text(200000, 'x');
    folder.write("media/x.png", text);
    folder.write("a/x.png", text);
    const fs::path there = folder.path() / "media/x.png";
    const auto before = fs::last_write_time(there);
    MediaCopies copies = newRun();
    EXPECT_EQ(nameOf(copies, "a/x.png"), "x.png");
    EXPECT_EQ(fs::last_write_time(there), before);
    EXPECT_EQ(names(), Names{"x.png"});
}

TEST_F(MediaCopiesTest, AreNotMadeOfWhatIsThereAlready) {
    folder.write("media/x.png", "x");
    folder.write("a/x.png", "other");
    MediaCopies copies = newRun();
    EXPECT_EQ(nameOf(copies, "media/x.png"), "x.png");
    EXPECT_EQ(nameOf(copies, "a/x.png"), "x-2.png");
    EXPECT_EQ(names(), (Names{"x-2.png", "x.png"}));
}

TEST_F(MediaCopiesTest, AreOfRegularFilesOnly) {
    fs::create_directory(folder.path() / "folder.png");
    fs::create_symlink("none", folder.path() / "link.png");
    makePipe(folder.file("pipe.png"));
    MediaCopies copies = newRun();
    const Watchdog watchdog(60);
    for (const char* const path :
         {"none.png", "folder.png", "link.png", "pipe.png", "none/x.png"}) {
        EXPECT_EQ(copies.copyOf(folder.path() / path), std::nullopt) << path;
    }
    EXPECT_EQ(copies.copyOf("/dev/zero"), std::nullopt);
    EXPECT_EQ(copies.copyOf(std::string(5000, 'x')), std::nullopt);
    EXPECT_EQ(names(), Names{});
}

TEST_F(MediaCopiesTest, FailWhenTheFileCannotBeRead) {
    const std::string path = folder.write("a/x.png", "x");
    fs::permissions(path, fs::perms::none);
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(folder.path() / "media", fs::perms::all);
    const WithoutRights noRights;
    MediaCopies copies = newRun();
    try {
        copies.copyOf(path);
        ADD_FAILURE();
    } catch (const FileFailure& failure) {
        EXPECT_EQ(std::string(failure.what()), "cannot read " + path + ": Permission denied");
    }
    EXPECT_EQ(names(), Names{});
}

TEST_F(MediaCopiesTest, FailWithNothingHalfWrittenWhenTheDiskIsFull) {
    const std::string path = folder.write("a/x.png", std::string(200000, 'x'));
    MediaCopies copies = newRun();
    const FileSizeLimit limit(100000);
    try {
        copies.copyOf(path);
        ADD_FAILURE();
    } catch (const FileFailure& failure) {
        EXPECT_EQ(std::string(failure.what()),
                  "cannot write " + folder.file("media/x.png") + ": File too large");
    }
    EXPECT_EQ(names(), Names{});
}

}  // namespace
}  // namespace marrowpress
