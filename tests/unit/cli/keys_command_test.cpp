#include "cli/keys_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

/// What is refused in front of a run; `tests/cli/keys_command_test.cpp` has the runs.
class KeysCommandTest : public testing::Test {
protected:
    KeysCommandTest() { options.map = folder.write("m.ditamap", "<map/>"); }

    /// The first line of a refusal.
    std::string refusal() {
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(runKeys(options, {out, err}), ExitCode::kWrongUsage);
        EXPECT_EQ(out.str(), "");
        return err.str().substr(0, err.str().find('\n'));
    }

    TemporaryFolder folder;
    KeysOptions options;
};

TEST_F(KeysCommandTest, TheMapMustBeOne) {
    options.map = folder.write("a.dita", "<topic/>");
    EXPECT_EQ(refusal(),
              "marrowpress keys: MAP: " + options.map + " is a `topic`; a map is wanted");
    options.map = folder.file("none.ditamap");
    EXPECT_EQ(refusal(),
              "marrowpress keys: MAP: cannot read " + options.map + ": No such file or directory");
}

TEST_F(KeysCommandTest, EachProfileMustBeReadable) {
    options.filters = {folder.file("none.ditaval")};
    EXPECT_EQ(refusal(), "marrowpress keys: --filter: cannot read " + options.filters[0] +
                             ": No such file or directory");
}

TEST_F(KeysCommandTest, NoReportMayTakeThePlaceOfWhatIsRead) {
    options.diagnostics.sarif = options.map;
    EXPECT_EQ(refusal(), "marrowpress keys: --sarif: " + options.map +
                             " is what the run reads as MAP; choose another file");
    EXPECT_EQ(folder.read("m.ditamap"), "<map/>");
}

}  // namespace
}  // namespace marrowpress
