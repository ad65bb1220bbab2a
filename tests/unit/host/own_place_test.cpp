#include "host/own_place.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

TEST(OwnPlaceTest, ThisProgramIsNoLibrary) {
    EXPECT_FALSE(isInLibrary());
    EXPECT_EQ(ownPath(), fs::read_symlink("/proc/self/exe"));
}

TEST(OwnPlaceTest, WhatIsBesideTheProgramComesFirst) {
    const fs::path program = fs::read_symlink("/proc/self/exe");
    const fs::path name = program.filename();
    EXPECT_EQ(findBesideOrInstalled(name, {"..", ".."}), program);
    EXPECT_EQ(findBesideOrInstalled("no such file", {"./" / name, "no such file"}), program);
    EXPECT_EQ(findBesideOrInstalled("no such file", {"../no such file", name}),
              program.parent_path() / "no such file");
}

}  // namespace
}  // namespace marrowpress
