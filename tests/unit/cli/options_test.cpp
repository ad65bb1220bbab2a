#include "cli/options.h"

#include <gtest/gtest.h>

namespace marrowpress {
namespace {

TEST(UsageErrorTextTest, NamesTheCommandAndPointsToItsHelp) {
    EXPECT_EQ(usageErrorText("publish", "MAP is required"),
              "marrowpress publish: MAP is required\n"
              "Run `marrowpress publish --help` for help.\n");
}

TEST(UsageErrorTextTest, NamesTheProgramWhereThereIsNoCommand) {
    EXPECT_EQ(usageErrorText("", "a command is missing"),
              "marrowpress: a command is missing\n"
              "Run `marrowpress --help` for help.\n");
}

}  // namespace
}  // namespace marrowpress
