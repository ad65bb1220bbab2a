#include "cli/aside_composite.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>

#include "cli/file_failure.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class AsideCompositeTest : public testing::Test {
protected:
    AsideCompositeTest() { fs::create_directory(folder_.path() / "out"); }

    std::size_t entries() const {
        const fs::directory_iterator all(folder_.path() / "out");
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

    static void write(const fs::path& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }

    TemporaryFolder folder_;
    fs::path place_ = folder_.path() / "out/m.dita";
};

TEST_F(AsideCompositeTest, StandsBesideItsPlaceUntilItIsWhole) {
    write(place_, "old");
    const AsideComposite composite(place_);
    EXPECT_EQ(composite.path().filename(), "m.dita");
    EXPECT_TRUE(composite.path().string().starts_with(place_.parent_path().string() + "/."));
    write(composite.path(), "new");
    EXPECT_EQ(folder_.read("out/m.dita"), "old");
    composite.moveToPlace();
    EXPECT_EQ(folder_.read("out/m.dita"), "new");
}

TEST_F(AsideCompositeTest, NothingIsLeftOfTheFolder) {
    std::optional<AsideComposite> composite(place_);
    write(composite->path(), "half");
    composite.reset();
    EXPECT_EQ(entries(), 0U);
}

TEST_F(AsideCompositeTest, ACompositeThatIsNotThereCannotBeMoved) {
    const AsideComposite composite(place_);
    EXPECT_THROW(composite.moveToPlace(), FileFailure);
}

TEST_F(AsideCompositeTest, WithoutItsFolderThereIsNoPlaceForIt) {
    EXPECT_THROW(AsideComposite(folder_.path() / "none/m.dita"), FileFailure);
}

TEST_F(AsideCompositeTest, WhatTellsOfTheFolderIsToldAsOfThePlace) {
    const AsideComposite composite(place_);
    const std::string there = composite.path().string();
    const std::string folder = composite.path().parent_path().string();
    EXPECT_EQ(composite.asOfPlace("`" + there + "`"), "`" + place_.string() + "`");
    EXPECT_EQ(composite.asOfPlace("in " + folder + " too"),
              "in " + place_.parent_path().string() + " too");
    Finding finding;
    finding.text = "cannot write " + there;
    finding.place.file = there;
    finding.target = there;
    finding.hint = there;
    finding.places = {{there, 1, 2}};
    finding.via = {{{there, 3, 4}, "href " + there}};
    finding.hostText = "107 " + there;
    const Finding told = composite.asOfPlace(finding);
    const std::string place = place_.string();
    EXPECT_EQ(told.text, "cannot write " + place);
    EXPECT_EQ(told.place.file, place);
    EXPECT_EQ(told.target, place);
    EXPECT_EQ(told.hint, place);
    EXPECT_EQ(told.places[0].file, place);
    EXPECT_EQ(told.via[0].place.file, place);
    EXPECT_EQ(told.via[0].what, "href " + place);
    EXPECT_EQ(told.hostText, "107 " + place);
}

TEST_F(AsideCompositeTest, ItIsSeenWhenTheCompositeTellsOfTheFolder) {
    const AsideComposite composite(place_);
    EXPECT_FALSE(composite.isTold()) << "there is none yet";
    write(composite.path(), "");
    EXPECT_FALSE(composite.isTold());
    write(composite.path(), "<dita/>");
    EXPECT_FALSE(composite.isTold());
    write(composite.path(), "<dita xtrf=\"" + composite.path().string() + "\"/>");
    EXPECT_TRUE(composite.isTold());
}

TEST_F(AsideCompositeTest, TheFolderOfOneThatLivesIsNotRemoved) {
    const AsideComposite composite(place_);
    removeLeftAside(place_.parent_path());
    EXPECT_TRUE(fs::exists(composite.path().parent_path()));
}

TEST_F(AsideCompositeTest, FoldersThatWereLeftGoAndForeignOnesStay) {
    const std::string owner = "A private folder of marrowpress, which removes it.\n";
    folder_.write("out/.marrowpress-1/owner", owner);
    folder_.write("out/.marrowpress-1/work/m.dita", "half");
    folder_.write("out/.marrowpress-2/new", owner.substr(0, 5));
    fs::create_directory(folder_.path() / "out/.marrowpress-3");
    folder_.write("out/.marrowpress-4/mine", owner);
    folder_.write("out/.marrowpress-5/owner", "me");
    folder_.write("out/.marrowpress-6", owner);
    folder_.write("elsewhere/owner", owner);
    fs::create_directory_symlink("../elsewhere", folder_.path() / "out/.marrowpress-7");
    removeLeftAside(place_.parent_path());
    EXPECT_EQ(entries(), 4U);
    for (const char* const name : {"out/.marrowpress-4/mine", "out/.marrowpress-5/owner",
                                   "out/.marrowpress-6", "elsewhere/owner"}) {
        EXPECT_TRUE(folder_.exists(name)) << name;
    }
    removeLeftAside(folder_.path() / "none");
}

}  // namespace
}  // namespace marrowpress
