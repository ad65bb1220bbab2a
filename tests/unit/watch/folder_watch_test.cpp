#include "cli/watch/folder_watch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <filesystem>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class FolderWatchTest : public testing::Test {
protected:
    WatchedNames namesOf(const std::string& name) const {
        return watchedNames({folder_.file(name)});
    }

    std::set<std::string> namesIn(const WatchedNames& names, const std::string& folder) const {
        const auto found = names.find((folder_.path() / folder).lexically_normal().string());
        return found == names.end() ? std::set<std::string>() : found->second;
    }

    /// Whether `change` is heard by who follows the file.
    template <class Change>
    bool isHeard(const std::string& name, const Change& change) {
        FolderWatch watch;
        EXPECT_TRUE(watch.follow(namesOf(name)));
        EXPECT_FALSE(watch.takeEvents());
        change();
        return watch.takeEvents();
    }

    TemporaryFolder folder_;
};

TEST_F(FolderWatchTest, AFileIsWatchedInItsFolderAndTheFolderInItsOwn) {
    folder_.write("docs/a.dita", "a");
    const WatchedNames names = namesOf("docs/a.dita");
    EXPECT_THAT(namesIn(names, "docs"), ElementsAre("a.dita"));
    const auto above = names.find(folder_.path().string());
    ASSERT_NE(above, names.end());
    EXPECT_THAT(above->second, ElementsAre("docs"));
    EXPECT_THAT(names.at("/"), Not(IsEmpty()));
}

TEST_F(FolderWatchTest, AnAbsentFileIsWatchedWhereItsWayEnds) {
    fs::create_directory(folder_.path() / "docs");
    const WatchedNames names = namesOf("docs/later/b.dita");
    EXPECT_THAT(namesIn(names, "docs"), ElementsAre("later"));
    EXPECT_THAT(namesIn(names, "docs/later"), IsEmpty());
}

TEST_F(FolderWatchTest, ALinkAndItsTargetAreBothWatched) {
    folder_.write("shared/a.dita", "a");
    fs::create_directory(folder_.path() / "docs");
    fs::create_symlink("../shared/a.dita", folder_.path() / "docs/a.dita");
    fs::create_directory_symlink(folder_.path() / "docs", folder_.path() / "here");
    const WatchedNames names = namesOf("here/a.dita");
    EXPECT_THAT(names.at(folder_.path().string()), ElementsAre("docs", "here", "shared"));
    EXPECT_THAT(namesIn(names, "docs"), ElementsAre("a.dita"));
    EXPECT_THAT(namesIn(names, "shared"), ElementsAre("a.dita"));
}

TEST_F(FolderWatchTest, LinksInACircleLeadNowhere) {
    fs::create_symlink("b", folder_.path() / "a");
    fs::create_symlink("a", folder_.path() / "b");
    EXPECT_THAT(namesOf("a/x.dita").at(folder_.path().string()), ElementsAre("a", "b"));
}

TEST_F(FolderWatchTest, AFileThatIsWrittenReplacedOrRemovedIsHeard) {
    folder_.write("a.dita", "a");
    EXPECT_TRUE(isHeard("a.dita", [&] { folder_.write("a.dita", "b"); }));
    EXPECT_TRUE(isHeard("a.dita", [&] {
        folder_.write("a.new", "c");
        fs::rename(folder_.path() / "a.new", folder_.path() / "a.dita");
    }));
    EXPECT_TRUE(isHeard("a.dita", [&] { fs::remove(folder_.path() / "a.dita"); }));
}

TEST_F(FolderWatchTest, OtherFilesOfTheFolderAreNotHeard) {
    folder_.write("a.dita", "a");
    EXPECT_FALSE(isHeard("a.dita", [&] { folder_.write("b.dita", "b"); }));
}

TEST_F(FolderWatchTest, AFolderThatIsMovedAwayIsHeard) {
    folder_.write("x/docs/a.dita", "a");
    EXPECT_TRUE(
        isHeard("x/docs/a.dita", [&] { fs::rename(folder_.path() / "x", folder_.path() / "y"); }));
}

TEST_F(FolderWatchTest, WhatGoesOnInFoldersAboveWakesNobody) {
    folder_.write("x/docs/a.dita", "a");
    FolderWatch watch;
    ASSERT_TRUE(watch.follow(namesOf("x/docs/a.dita")));
    folder_.write("x/other.dita", "b");
    fs::create_directory(folder_.path() / "x/more");
    pollfd source{watch.descriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&source, 1, 0), 0);
}

TEST_F(FolderWatchTest, AFolderThatComesBackIsHeard) {
    fs::create_directory(folder_.path() / "x");
    EXPECT_TRUE(isHeard("x/docs/a.dita", [&] { fs::create_directory(folder_.path() / "x/docs"); }));
}

TEST_F(FolderWatchTest, NamesThatAreFollowedNoLongerAreNotHeard) {
    folder_.write("docs/a.dita", "a");
    folder_.write("other/b.dita", "b");
    FolderWatch watch;
    ASSERT_TRUE(watch.follow(namesOf("docs/a.dita")));
    ASSERT_TRUE(watch.follow(namesOf("other/b.dita")));
    folder_.write("docs/a.dita", "changed");
    EXPECT_FALSE(watch.takeEvents());
    folder_.write("other/b.dita", "changed");
    EXPECT_TRUE(watch.takeEvents());
}

}  // namespace
}  // namespace marrowpress
