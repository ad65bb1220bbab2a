#include "findings/words.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(CountedTest, OneHasItsOwnWord) {
    const CountedNoun noun{"file", "files"};
    EXPECT_EQ(counted(0, noun), "0 files");
    EXPECT_EQ(counted(1, noun), "1 file");
    EXPECT_EQ(counted(2, noun), "2 files");
    EXPECT_EQ(counted(11000, noun), "11000 files");
}

TEST(MoreTextTest, TheNumberStandsWhereTheLanguageWantsIt) {
    Words words;
    EXPECT_EQ(moreText(4, words), "and 4 more");
    words.more = "{0} weitere";
    EXPECT_EQ(moreText(12345, words), "12345 weitere");
}

}  // namespace
}  // namespace marrowpress
