#include "cli/watch/followed_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "results/file_digest.h"
#include "results/file_stamp.h"
#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;

class FollowedFilesTest : public testing::Test {
protected:
    /// The result of a run that depends on a file, and was over long after the file was written.
    RunResult resultOf(const std::string& name) const {
        RunResult result;
        result.dependencies.push_back({folder_.file(name), "topic", "read", {}, {}});
        const std::optional<FileStamp> stamp = stampOf(folder_.file(name));
        if (stamp) {
            result.run.files.emplace_back(
                KnownFile{*stamp, quickDigestOf(folder_.file(name)).value()});
            result.run.begin = stamp->changed + 2 * kFileClockTick;
            result.run.end = result.run.begin + 2 * kFileClockTick;
        } else {
            result.run.files.emplace_back();
        }
        return result;
    }

    void touch(const std::string& name) const {
        fs::last_write_time(folder_.path() / name,
                            fs::file_time_type::clock::now() - std::chrono::hours(1));
    }

    TemporaryFolder folder_;
    FollowedFiles files_;
};

TEST_F(FollowedFilesTest, AFileIsChangedOnceWhenItHoldsSomethingElse) {
    folder_.write("a.dita", "old");
    files_.add(resultOf("a.dita"));
    EXPECT_THAT(files_.takeChanges(), IsEmpty());
    folder_.write("a.dita", "new");
    EXPECT_THAT(files_.takeChanges(), ElementsAre(folder_.file("a.dita")));
    EXPECT_THAT(files_.takeChanges(), IsEmpty());
}

TEST_F(FollowedFilesTest, ATouchAloneIsNoChange) {
    folder_.write("a.dita", "old");
    files_.add(resultOf("a.dita"));
    touch("a.dita");
    EXPECT_THAT(files_.takeChanges(), IsEmpty());
}

TEST_F(FollowedFilesTest, AFileThatComesOrGoesIsChanged) {
    files_.add(resultOf("later.dita"));
    EXPECT_THAT(files_.takeChanges(), IsEmpty());
    folder_.write("later.dita", "");
    EXPECT_THAT(files_.takeChanges(), ElementsAre(folder_.file("later.dita")));
    fs::remove(folder_.path() / "later.dita");
    EXPECT_THAT(files_.takeChanges(), ElementsAre(folder_.file("later.dita")));
    EXPECT_THAT(files_.takeChanges(), IsEmpty());
}

TEST_F(FollowedFilesTest, AFileThatCannotBeReadIsChangedOnceItCan) {
    RunResult result = resultOf("a.dita");
    folder_.write("a.dita", "a");
    fs::permissions(folder_.path() / "a.dita", fs::perms::none);
    {
        const WithoutRights user;
        files_.add(result);
        EXPECT_THAT(files_.takeChanges(), IsEmpty());
        EXPECT_THAT(files_.takeChanges(), IsEmpty());
    }
    fs::permissions(folder_.path() / "a.dita", fs::perms::all);
    EXPECT_THAT(files_.takeChanges(), ElementsAre(folder_.file("a.dita")));
    EXPECT_THAT(files_.takeChanges(), IsEmpty());
}

TEST_F(FollowedFilesTest, AFileThatCameAfterTheRunHasChanged) {
    const RunResult result = resultOf("a.dita");
    folder_.write("a.dita", "a");
    files_.add(result);
    EXPECT_THAT(files_.takeChanges(), ElementsAre(folder_.file("a.dita")));
}

TEST_F(FollowedFilesTest, AFileThatWasWrittenDuringTheRunHasChanged) {
    folder_.write("a.dita", "a");
    RunResult result = resultOf("a.dita");
    result.run.begin = result.run.files[0]->stamp.changed - 1;
    files_.add(result);
    EXPECT_THAT(files_.takeChanges(), ElementsAre(folder_.file("a.dita")));
}

TEST_F(FollowedFilesTest, AFileThatTwoRunsMetDifferentlyHasChanged) {
    folder_.write("a.dita", "first");
    files_.add(resultOf("a.dita"));
    folder_.write("a.dita", "second");
    files_.add(resultOf("a.dita"));
    EXPECT_THAT(files_.takeChanges(), ElementsAre(folder_.file("a.dita")));
    EXPECT_THAT(files_.takeChanges(), IsEmpty());
}

TEST_F(FollowedFilesTest, OutputsAreNotFollowed) {
    folder_.write("out.dita", "o");
    folder_.write("a.dita", "a");
    const RunResult reader = resultOf("out.dita");
    RunResult writer = resultOf("a.dita");
    writer.outputs.push_back({folder_.file("out.dita"), {}});
    files_.add(reader);
    files_.add(writer);
    EXPECT_THAT(files_.paths(), ElementsAre(folder_.file("a.dita")));
    files_.add(reader);
    EXPECT_EQ(files_.size(), 1U);
}

TEST_F(FollowedFilesTest, AFileThatNoResultNamesIsKnownAsItIs) {
    folder_.write("project.xml", "p");
    files_.add(folder_.file("project.xml"), latestStampUntilNow() + 1);
    EXPECT_THAT(files_.takeChanges(), IsEmpty());
    folder_.write("project.xml", "q");
    EXPECT_THAT(files_.takeChanges(), ElementsAre(folder_.file("project.xml")))
        << "also when both were written within one tick of the clock";
}

TEST_F(FollowedFilesTest, AFileThatNoResultNamesHasChangedWhenItWasWrittenSinceItsReaderBegan) {
    const std::int64_t begin = earliestStampFromNow();
    folder_.write("project.xml", "p");
    files_.add(folder_.file("project.xml"), begin);
    EXPECT_THAT(files_.takeChanges(), ElementsAre(folder_.file("project.xml")));
    EXPECT_THAT(files_.takeChanges(), IsEmpty());
}

}  // namespace
}  // namespace marrowpress
