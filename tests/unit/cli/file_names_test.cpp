#include "cli/file_names.h"

#include <gtest/gtest.h>

#include <set>

namespace marrowpress {
namespace {

using Texts = std::vector<std::string>;

TEST(ShortNamesTest, AreWithoutFoldersAndEnding) {
    EXPECT_EQ(shortNames({"/w/a.dita", "/w/t/b.dita", "/w/.profile"}),
              (Texts{"a", "b", ".profile"}));
    EXPECT_EQ(shortNames({}), Texts{});
}

TEST(ShortNamesTest, AreAsLongAsItTakesToTellThemApart) {
    EXPECT_EQ(shortNames({"/w/a.dita", "/w/a.ditamap", "/w/b.dita"}),
              (Texts{"a.dita", "a.ditamap", "b"}));
    EXPECT_EQ(shortNames({"/w/x/a.dita", "/w/y/a.dita"}), (Texts{"x/a.dita", "y/a.dita"}));
    EXPECT_EQ(shortNames({"/a.dita", "/x/a.dita"}), (Texts{"/a.dita", "x/a.dita"}));
}

TEST(ShortNamesTest, AreNoneOfTheOthersInAnyCase) {
    const Texts names = shortNames({"/w/a", "/w/a.b", "/v/a.b", "/w/\xFF", "/w/\\xFF", "/w/x~2"});
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
}

}  // namespace
}  // namespace marrowpress
