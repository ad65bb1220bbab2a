#include "cli/publish_command.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

TEST(MissingFileTest, IsTheFirstThatIsNoFile) {
    const TemporaryFolder folder;
    const std::string there = folder.write("a.qs", "");
    EXPECT_EQ(findMissingFile({}), std::nullopt);
    EXPECT_EQ(findMissingFile({there, there}), std::nullopt);
    const std::string end = " was not written";
    EXPECT_EQ(findMissingFile({there, folder.file("b.qs"), folder.file("c.qs")}),
              "the run ended, but " + folder.file("b.qs") + end);
    EXPECT_EQ(findMissingFile({folder.path().string()}),
              "the run ended, but " + folder.path().string() + end);
}

}  // namespace
}  // namespace marrowpress
