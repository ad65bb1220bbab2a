#include "cli/input_faults.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class MapFaultTest : public testing::Test {
protected:
    std::string faultOf(const std::string& text) const {
        return findMapFault("given.dita", folder.write("m.dita", text)).value_or("");
    }

    TemporaryFolder folder;
};

TEST_F(MapFaultTest, AMapHasNone) {
    EXPECT_EQ(faultOf("<map/>"), "");
}

TEST_F(MapFaultTest, WhatIsNotWellFormedIsLeftToTheRun) {
    EXPECT_EQ(faultOf("<map"), "");
}

TEST_F(MapFaultTest, AnythingElseIsNamed) {
    EXPECT_EQ(faultOf("<reference/>"), "MAP: given.dita is a `reference`; a map is wanted");
    EXPECT_EQ(faultOf("<val/>"), "MAP: given.dita is a `val`; a map is wanted");
}

TEST_F(MapFaultTest, WhatCannotBeReadHasTheReason) {
    EXPECT_EQ(findMapFault("given.dita", folder.file("none")),
              "MAP: cannot read given.dita: No such file or directory");
    EXPECT_EQ(findMapFault("given.dita", folder.path().string()),
              "MAP: cannot read given.dita: not a regular file");
}

class ProfileFaultTextTest : public testing::Test {
protected:
    std::string faultOf(const std::string& path) const {
        return profileFaultText("--filter", "p.ditaval", std::get<ProfileFault>(readProfile(path)));
    }

    TemporaryFolder folder;
};

TEST_F(ProfileFaultTextTest, NamesTheArgumentTheLineAndTheReason) {
    EXPECT_EQ(faultOf(folder.write("f", "<val>\n  <prop>\n</val>")),
              "--filter: p.ditaval:3:7: Opening and ending tag mismatch: prop line 2 and val");
    EXPECT_EQ(faultOf(folder.write("f", "")), "--filter: p.ditaval: the file is empty");
    EXPECT_EQ(faultOf(folder.file("none")),
              "--filter: cannot read p.ditaval: No such file or directory");
}

TEST(ProfileRootFaultTest, ARootThatIsNoValIsNamed) {
    const TemporaryFolder folder;
    const auto faultOf = [&folder](const std::string& text) {
        const auto reading = readProfile(folder.write("f", text));
        return findProfileRootFault("--each-filter", "p.ditaval", std::get<Profile>(reading))
            .value_or("");
    };
    EXPECT_EQ(faultOf("<val/>"), "");
    EXPECT_EQ(faultOf("\n<topic/>"),
              "--each-filter: p.ditaval:2:1: the root is a `topic`; that of "
              "a DITAVAL file is a `val`");
}

}  // namespace
}  // namespace marrowpress
