#include "cli/run_measures.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/chosen_language.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class RunMeasuresTest : public testing::Test {
protected:
    ExitCode finish(ExitCode code) {
        RunMeasures measures(options);
        const Streams streams{out, err};
        return measures.finish(code, "marrowpress test", streams);
    }

    TemporaryFolder folder;
    ChosenLanguage english{Language::kEnglish};
    DiagnosticsOptions options;
    std::ostringstream out;
    std::ostringstream err;
};

TEST_F(RunMeasuresTest, WithoutAWishNothingIsMeasured) {
    EXPECT_EQ(RunMeasures(options).clock(), nullptr);
    EXPECT_EQ(finish(ExitCode::kFindings), ExitCode::kFindings);
    EXPECT_EQ(out.str() + err.str(), "");
}

TEST_F(RunMeasuresTest, TheTimelineGoesToItsFile) {
    options.timings = folder.write("t.json", "old");
    EXPECT_EQ(finish(ExitCode::kFindings), ExitCode::kFindings);
    EXPECT_NE(folder.read("t.json").find("\"marrowpress test\""), std::string::npos);
    EXPECT_EQ(err.str(), "");
}

TEST_F(RunMeasuresTest, ATimelineThatCannotBeWrittenIsAFailure) {
    options.timings = folder.file("none/t.json");
    EXPECT_EQ(finish(ExitCode::kSuccess), ExitCode::kRunFailed);
    EXPECT_EQ(err.str(),
              "marrowpress: cannot write " + *options.timings + ": No such file or directory\n");
}

TEST_F(RunMeasuresTest, StatisticsGoToStandardError) {
    options.showsStatistics = true;
    EXPECT_EQ(finish(ExitCode::kRunFailed), ExitCode::kRunFailed);
    EXPECT_TRUE(err.str().starts_with("Documents: 0 read")) << err.str();
}

}  // namespace
}  // namespace marrowpress
