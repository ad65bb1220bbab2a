#include "library/calling_back.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>

#include "library/failure.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

/// The code with which a turn for the folder is refused; MP_OK when it is given.
int codeOf(const std::filesystem::path& path) {
    try {
        const FolderTurn turn(path);
        return MP_OK;
    } catch (const LibraryFailure& failure) {
        return failure.code();
    }
}

TEST(CallingBackTest, AFolderIsTakenOnTheThreadOfItsCallUntilThatIsOver) {
    const TemporaryFolder folder;
    std::optional<FolderTurn> turn(std::in_place, folder.path());
    EXPECT_EQ(codeOf(folder.path()), MP_BUSY);
    EXPECT_EQ(codeOf(folder.path() / "." / ""), MP_BUSY) << "by whatever path";
    EXPECT_EQ(codeOf(folder.path().parent_path()), MP_OK);
    int other = MP_BUSY;
    std::thread([&] { other = codeOf(folder.path()); }).join();
    EXPECT_EQ(other, MP_OK) << "another thread may wait";
    turn.reset();
    EXPECT_EQ(codeOf(folder.path()), MP_OK);
}

TEST(CallingBackTest, ACallThatWritesNothingTakesNoFolder) {
    const FolderTurn turn({});
    EXPECT_EQ(codeOf({}), MP_OK);
    EXPECT_EQ(codeOf("/none/such"), MP_OK);
}

TEST(CallingBackTest, AsksOnItsThreadAlone) {
    EXPECT_FALSE(Asking::isGoingOn());
    const Asking outer;
    { const Asking inner; }
    EXPECT_TRUE(Asking::isGoingOn());
    bool isOther = true;
    std::thread([&] { isOther = Asking::isGoingOn(); }).join();
    EXPECT_FALSE(isOther);
}

}  // namespace
}  // namespace marrowpress
