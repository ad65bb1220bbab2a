#include "cli/repeated_run.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <thread>

#include "cli/findings_report.h"
#include "cli/publish_paths.h"
#include "results/file_digest.h"
#include "results/result_json.h"
#include "tests/support/current_folder.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// Runs that only say what they have read and written.
class RepeatedRunTest : public testing::Test {
protected:
    RepeatedRunTest() {
        folder_.write("m.ditamap", "map");
        folder_.write("o.dita", "output");
        options_.map = folder_.file("m.ditamap");
        options_.output = folder_.file("o.dita");
        options_.result = folder_.file("r.json");
        options_.isOnlyIfChanged = true;
        waitATick();
    }

    /// So that what was changed is not taken for what the run was reading.
    static void waitATick() {
        std::this_thread::sleep_for(std::chrono::nanoseconds(2 * kFileClockTick));
    }

    ExitCode repeat() {
        return runRepeated({"publish", options_}, {out_, err_}, [this](const RunRecording& own) {
            const FindingsReport report(options_.diagnostics, options_.map,
                                        folder_.path().string());
            if (const std::optional<ExitCode> known = own.answer(report)) {
                return *known;
            }
            ++runs_;
            const PublishPaths paths = resolvePublishPaths(options_);
            ResultRecorder recorder(own.id, identityOf("publish", options_, paths), paths);
            if (touchesTheMap_) {
                folder_.write("m.ditamap", std::string(runs_, 'x'));
            }
            recorder.finishRun(status_);
            own.demandSameSources(recorder);
            ++told_;
            FindingSummary summary;
            summary.exit = static_cast<int>(exit_);
            Finding finding;
            finding.id = findingId_;
            finding.text = "what is wrong";
            RunResult result = recorder.finish({finding}, summary, {options_.output});
            result.run.isMemoryShort = isMemoryShort_;
            own.take(result);
            return exit_;
        });
    }

    TemporaryFolder folder_;
    PublishOptions options_;
    std::ostringstream out_;
    std::ostringstream err_;
    std::size_t runs_ = 0;
    std::size_t told_ = 0;  ///< Runs that came to tell what they have found.
    bool touchesTheMap_ = false;
    ExitCode exit_ = ExitCode::kFindings;
    std::int32_t status_ = 0;
    std::string findingId_ = "MP105";
    bool isMemoryShort_ = false;
};

TEST_F(RepeatedRunTest, AFailureHoldsWhereItIsOfTheSources) {
    exit_ = ExitCode::kRunFailed;
    status_ = -42;
    findingId_ = "MP106";
    EXPECT_EQ(repeat(), ExitCode::kRunFailed);
    EXPECT_EQ(repeat(), ExitCode::kRunFailed);
    EXPECT_EQ(runs_, 1U);
    EXPECT_TRUE(err_.str().ends_with("up to date\n")) << err_.str();
}

TEST_F(RepeatedRunTest, AFailureOfTheMachineMayBeOverTheNextTime) {
    exit_ = ExitCode::kRunFailed;
    status_ = -42;
    findingId_ = "MP107";
    repeat();
    repeat();
    EXPECT_EQ(runs_, 2U) << "the disk was full";
    findingId_ = "MP106";
    isMemoryShort_ = true;
    repeat();
    repeat();
    EXPECT_EQ(runs_, 4U);
    isMemoryShort_ = false;
    status_ = 0;
    repeat();
    repeat();
    EXPECT_EQ(runs_, 6U) << "all was done, and nobody could be told";
}

TEST_F(RepeatedRunTest, ABaselineThatHoldsSomethingElseMakesAnotherRun) {
    options_.diagnostics.baseline = folder_.write("base.json", "");
    repeat();
    repeat();
    EXPECT_EQ(runs_, 1U);
    folder_.write("base.json", "\n");
    repeat();
    EXPECT_EQ(runs_, 2U);
    fs::remove(folder_.file("base.json"));
    repeat();
    EXPECT_EQ(runs_, 3U);
}

TEST_F(RepeatedRunTest, FindingsThatNameFilesAsSeenFromElsewhereAreMadeAgain) {
    repeat();
    fs::create_directory(folder_.path() / "elsewhere");
    {
        const CurrentFolder elsewhere(folder_.path() / "elsewhere");
        repeat();
        EXPECT_EQ(runs_, 2U);
        repeat();
        EXPECT_EQ(runs_, 2U);
    }
    repeat();
    EXPECT_EQ(runs_, 3U);
}

TEST_F(RepeatedRunTest, IsWhatKeepsAResult) {
    PublishOptions plain;
    EXPECT_FALSE(isRepeated(plain));
    EXPECT_TRUE(isRepeated(options_));
    options_.isOnlyIfChanged = false;
    EXPECT_TRUE(isRepeated(options_));
}

TEST_F(RepeatedRunTest, WhereNothingHasChangedTheLastRunIsShownAgain) {
    EXPECT_EQ(repeat(), ExitCode::kFindings);
    EXPECT_EQ(runs_, 1U);
    EXPECT_EQ(repeat(), ExitCode::kFindings) << "its exit code counts again";
    EXPECT_EQ(runs_, 1U);
    EXPECT_NE(err_.str().find("what is wrong [MP105]"), std::string::npos) << err_.str();
    EXPECT_TRUE(err_.str().ends_with("up to date\n")) << err_.str();
    EXPECT_EQ(out_.str(), options_.output + "\n");
}

TEST_F(RepeatedRunTest, AChangeMakesAnotherRun) {
    repeat();
    folder_.write("m.ditamap", "MAP");
    waitATick();
    repeat();
    EXPECT_EQ(runs_, 2U);
    fs::remove(options_.output);
    folder_.write("o.dita", "OUTPUT");
    repeat();
    EXPECT_EQ(runs_, 3U);
    options_.isForPrint = true;
    repeat();
    EXPECT_EQ(runs_, 4U);
}

TEST_F(RepeatedRunTest, WithoutIfChangedTheResultIsOnlyKept) {
    options_.isOnlyIfChanged = false;
    repeat();
    repeat();
    EXPECT_EQ(runs_, 2U);
    EXPECT_EQ(readResult(*options_.result).id, "m");
}

TEST_F(RepeatedRunTest, ARunThatReadWhatWasBeingChangedIsMadeAgain) {
    touchesTheMap_ = true;
    repeat();
    EXPECT_EQ(runs_, 3U);
    EXPECT_EQ(told_, 1U) << "of those before nobody hears";
    EXPECT_EQ(readResult(*options_.result).run.tries, 3U);
    touchesTheMap_ = false;
    waitATick();
    repeat();
    EXPECT_EQ(runs_, 4U) << "nobody knows what the last one read";
}

TEST_F(RepeatedRunTest, AResultThatIsNoneCountsAsAbsentWithAWarning) {
    folder_.write("r.json", "{");
    repeat();
    EXPECT_EQ(runs_, 1U);
    EXPECT_NE(err_.str().find("r.json counts as absent: "), std::string::npos) << err_.str();
}

TEST_F(RepeatedRunTest, AFileThatCannotBeMadeFromTheResultHasToBeThatOfTheRun) {
    options_.diagnostics.report = folder_.file("page.html");
    repeat();
    repeat();
    EXPECT_EQ(runs_, 2U) << "it is not there";
    folder_.write("page.html", "page");
    repeat();
    EXPECT_EQ(runs_, 3U) << "somebody else has written it";
    repeat();
    EXPECT_EQ(runs_, 3U);
    folder_.write("page.html", "");
    repeat();
    EXPECT_EQ(runs_, 4U) << "it was changed";
}

TEST_F(RepeatedRunTest, AFileOfAnEarlierRunThanTheLastIsOld) {
    options_.depfile = folder_.write("d", "rule");
    repeat();
    options_.depfile.reset();
    folder_.write("m.ditamap", "another map");
    waitATick();
    repeat();
    repeat();
    EXPECT_EQ(runs_, 2U) << "without it the result holds";
    options_.depfile = folder_.file("d");
    repeat();
    EXPECT_EQ(runs_, 3U);
}

TEST_F(RepeatedRunTest, AResultThatCannotBeKeptFailsTheRunOnlyWhereItWasAskedFor) {
    options_.result = folder_.file("none/r.json");
    EXPECT_EQ(repeat(), ExitCode::kRunFailed);
    EXPECT_NE(err_.str().find("cannot write"), std::string::npos) << err_.str();
    options_.result.reset();
    folder_.write("file", "");
    setenv("XDG_STATE_HOME", folder_.file("file").c_str(), 1);
    EXPECT_EQ(repeat(), ExitCode::kFindings);
    setenv("XDG_STATE_HOME", folder_.file("state").c_str(), 1);
    EXPECT_EQ(repeat(), ExitCode::kFindings);
    const std::size_t runs = runs_;
    EXPECT_EQ(repeat(), ExitCode::kFindings);
    unsetenv("XDG_STATE_HOME");
    EXPECT_EQ(runs_, runs) << "it was kept there";
    EXPECT_TRUE(folder_.exists("state/marrowpress"));
}

}  // namespace
}  // namespace marrowpress
