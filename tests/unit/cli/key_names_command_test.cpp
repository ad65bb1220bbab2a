#include "cli/key_names_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

TEST(KeyNamesCommandTest, EachNameIsALineAndAMapThatIsAbsentHasNone) {
    const TemporaryFolder folder;
    std::ostringstream out;
    std::ostringstream err;
    const Streams streams{out, err};
    const std::string map = folder.write("m.ditamap", R"(<map><keydef keys="b a"/></map>)");
    EXPECT_EQ(runKeyNames(map, streams), ExitCode::kSuccess);
    EXPECT_EQ(runKeyNames(folder.file("none.ditamap"), streams), ExitCode::kSuccess);
    EXPECT_EQ(out.str(), "a\nb\n");
    EXPECT_EQ(err.str(), "");
}

}  // namespace
}  // namespace marrowpress
