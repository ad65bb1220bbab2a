#include "cli/check_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/chosen_language.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

/// The checks in front of a run; `tests/cli/check_command_test.cpp` has the runs.
class CheckCommandTest : public testing::Test {
protected:
    CheckCommandTest() { options.map = folder.write("m.ditamap", "<map/>"); }

    /// The first line of a refusal.
    std::string refusal() {
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(runCheck(options, {out, err}), ExitCode::kWrongUsage);
        EXPECT_EQ(out.str(), "");
        return err.str().substr(0, err.str().find('\n'));
    }

    TemporaryFolder folder;
    ChosenLanguage english{Language::kEnglish};
    CheckOptions options;
};

TEST_F(CheckCommandTest, TheMapMustBeOne) {
    options.map = folder.write("a.dita", "<topic/>");
    EXPECT_EQ(refusal(),
              "marrowpress check: MAP: " + options.map + " is a `topic`; a map is wanted");
    options.map = folder.file("none.ditamap");
    EXPECT_EQ(refusal(),
              "marrowpress check: MAP: cannot read " + options.map + ": No such file or directory");
}

TEST_F(CheckCommandTest, EachProfileMustBeReadable) {
    options.eachFilters = {folder.write("p.ditaval", "<val/>"), folder.file("none.ditaval")};
    EXPECT_EQ(refusal(), "marrowpress check: --each-filter: cannot read " + options.eachFilters[1] +
                             ": No such file or directory");
    options.eachFilters.clear();
    options.filters = {folder.write("q.ditaval", "<topic/>")};
    EXPECT_TRUE(refusal().starts_with("marrowpress check: --filter: ")) << refusal();
}

TEST_F(CheckCommandTest, NoReportMayTakeThePlaceOfWhatIsRead) {
    options.eachFilters = {folder.write("p.ditaval", "<val/>")};
    options.diagnostics.sarif = options.eachFilters[0];
    EXPECT_EQ(refusal(), "marrowpress check: --sarif: " + options.eachFilters[0] +
                             " is what the run reads as --each-filter; choose another file");
    options.diagnostics.sarif = options.map;
    EXPECT_EQ(refusal(), "marrowpress check: --sarif: " + options.map +
                             " is what the run reads as MAP; choose another file");
    EXPECT_EQ(folder.read("m.ditamap"), "<map/>");
}

TEST_F(CheckCommandTest, TheOutputIsLookedAt) {
    options.output = folder.write("notes.txt", "own notes");
    EXPECT_TRUE(refusal().starts_with("marrowpress check: --output: " + options.output +
                                      " is there already, and no composite"))
        << refusal();
}

}  // namespace
}  // namespace marrowpress
