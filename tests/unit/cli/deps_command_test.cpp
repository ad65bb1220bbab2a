#include "cli/deps_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

/// What is refused in front of a run; `tests/cli/deps_command_test.cpp` has the runs.
class DepsCommandTest : public testing::Test {
protected:
    DepsCommandTest() { options.map = folder.write("m.ditamap", "<map/>"); }

    /// The first line of a refusal.
    std::string refusal() {
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(runDeps(options, {out, err}), ExitCode::kWrongUsage);
        EXPECT_EQ(out.str(), "");
        return err.str().substr(0, err.str().find('\n'));
    }

    TemporaryFolder folder;
    DepsOptions options;
};

TEST_F(DepsCommandTest, TheMapMustBeOne) {
    options.map = folder.write("a.dita", "<topic/>");
    EXPECT_EQ(refusal(),
              "marrowpress deps: MAP: " + options.map + " is a `topic`; a map is wanted");
    options.map = folder.file("none.ditamap");
    EXPECT_EQ(refusal(),
              "marrowpress deps: MAP: cannot read " + options.map + ": No such file or directory");
}

TEST_F(DepsCommandTest, EachProfileMustBeReadable) {
    options.filters = {folder.file("none.ditaval")};
    EXPECT_EQ(refusal(), "marrowpress deps: --filter: cannot read " + options.filters[0] +
                             ": No such file or directory");
}

TEST_F(DepsCommandTest, NoReportMayTakeThePlaceOfWhatIsRead) {
    options.diagnostics.sarif = options.map;
    EXPECT_EQ(refusal(), "marrowpress deps: --sarif: " + options.map +
                             " is what the run reads as MAP; choose another file");
    EXPECT_EQ(folder.read("m.ditamap"), "<map/>");
}

}  // namespace
}  // namespace marrowpress
