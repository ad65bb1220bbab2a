#include "cli/result_recorder.h"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <chrono>
#include <filesystem>
#include <thread>

#include "results/file_digest.h"
#include "results/up_to_date.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

class ResultRecorderTest : public testing::Test {
protected:
    ResultRecorderTest() {
        folder_.write("m.ditamap", "map");
        folder_.write("out.dita", "out");
        options_.map = folder_.file("m.ditamap");
        options_.output = folder_.file("out.dita");
    }

    RunIdentity identity() const {
        return identityOf("publish", options_, resolvePublishPaths(options_));
    }

    ResultRecorder recorder() const { return {"guide", identity(), resolvePublishPaths(options_)}; }

    static Observation phase(const char* name) {
        Observation observation{};
        observation.kind = ObservationKind::kPhase;
        observation.target = name;
        return observation;
    }

    /// What a run tells when a topic refers to the file, which it is about to read.
    void refer(ResultRecorder& recorder, const std::string& name) const {
        const std::string file = folder_.file(name);
        const ObservedStep step{{options_.map.c_str(), 1, 1}, "href", ""};
        Observation observation{};
        observation.kind = ObservationKind::kFileReference;
        observation.code = static_cast<std::uint32_t>(ReferenceKind::kTopic);
        observation.target = file.c_str();
        observation.steps = &step;
        observation.stepCount = 1;
        recorder.observe(observation);
    }

    /// Writes the file, and gives it a time from before all runs.
    void writeEarlier(const std::string& name, const std::string& text) const {
        folder_.write(name, text);
        std::this_thread::sleep_for(std::chrono::nanoseconds(2 * kFileClockTick));
    }

    /// Whether the run's end finds that a file has changed, and its result tells so.
    static bool hasChanged(ResultRecorder& recorder) {
        recorder.finishRun(0);
        const bool isChanged = recorder.areSourcesChanged();
        const RunResult result = recorder.finish({}, {}, {});
        EXPECT_EQ(wasChangedMeanwhile(result), isChanged);
        EXPECT_EQ(
            FileComparison().isUpToDate(result, {result.request, result.options, result.versions}),
            !isChanged);
        return isChanged;
    }

    TemporaryFolder folder_;
    PublishOptions options_;
};

TEST_F(ResultRecorderTest, FilesThatStayAsTheyWereMetHaveNotChanged) {
    writeEarlier("topics/a.dita", "a");
    ResultRecorder recorder = this->recorder();
    refer(recorder, "topics/a.dita");
    refer(recorder, "topics/none.dita");
    EXPECT_FALSE(hasChanged(recorder));
}

TEST_F(ResultRecorderTest, AFolderThatBecomesAnotherOneDuringTheRunIsSeen) {
    folder_.write("topics/a.dita", "a");
    writeEarlier("others/a.dita", "b");
    ResultRecorder recorder = this->recorder();
    refer(recorder, "topics/a.dita");
    fs::rename(folder_.path() / "topics", folder_.path() / "earlier");
    fs::rename(folder_.path() / "others", folder_.path() / "topics");
    EXPECT_TRUE(hasChanged(recorder)) << "although the times of its files are old";
}

TEST_F(ResultRecorderTest, AFileThatGoesDuringTheRunIsSeen) {
    writeEarlier("topics/a.dita", "a");
    ResultRecorder recorder = this->recorder();
    refer(recorder, "topics/a.dita");
    fs::remove(folder_.path() / "topics/a.dita");
    EXPECT_TRUE(hasChanged(recorder));
}

TEST_F(ResultRecorderTest, AFileThatComesDuringTheRunIsSeen) {
    writeEarlier("elsewhere/a.dita", "a");
    ResultRecorder recorder = this->recorder();
    refer(recorder, "topics/a.dita");
    fs::rename(folder_.path() / "elsewhere", folder_.path() / "topics");
    EXPECT_TRUE(hasChanged(recorder)) << "although its times are old";
}

TEST_F(ResultRecorderTest, ARunIsMadeAgainOnlyWhereThereIsAnotherTry) {
    writeEarlier("topics/a.dita", "a");
    ResultRecorder recorder = this->recorder();
    refer(recorder, "topics/a.dita");
    RunRecording recording;
    recording.isMadeAgain = true;
    recorder.finishRun(0);
    EXPECT_NO_THROW(recording.demandSameSources(recorder));
    fs::remove(folder_.path() / "topics/a.dita");
    EXPECT_THROW(recording.demandSameSources(recorder), SourcesChanged);
    recording.isMadeAgain = false;
    EXPECT_NO_THROW(recording.demandSameSources(recorder));
}

TEST_F(ResultRecorderTest, AGoodRunHasItsFilesWithDigests) {
    ResultRecorder recorder = this->recorder();
    recorder.addCatalog(folder_.file("none.xml"));
    recorder.observe(phase("keys"));
    recorder.finishRun(0);
    FindingSummary summary;
    summary.exit = 3;
    summary.topics = 5;
    const RunResult result = recorder.finish({Finding()}, summary, {folder_.file("out.dita")});
    EXPECT_EQ(result.id, "guide");
    EXPECT_EQ(result.state, ResultState::kFindings);
    EXPECT_EQ(result.exit, 3);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.phase, "") << "it did not end in one";
    EXPECT_EQ(result.topics, 5U);
    EXPECT_EQ(result.findings.size(), 1U);
    ASSERT_EQ(result.dependencies.size(), 2U);
    EXPECT_EQ(result.dependencies[0].sha256, sha256Of("map"));
    EXPECT_EQ(result.dependencies[1].kind, "catalog");
    EXPECT_EQ(result.dependencies[1].state, "absent");
    EXPECT_EQ(result.dependencies[1].sha256, std::nullopt);
    ASSERT_EQ(result.outputs.size(), 1U);
    EXPECT_EQ(result.outputs[0].sha256, sha256Of("out"));
    ASSERT_EQ(result.run.files.size(), 3U);
    EXPECT_TRUE(result.run.files[0] && !result.run.files[1] && result.run.files[2]);
    EXPECT_GT(result.run.memory, 0U);
    EXPECT_LE(result.run.begin, result.run.end);
}

TEST_F(ResultRecorderTest, AFailedRunTellsItsLastPhaseAndWantOfMemory) {
    ResultRecorder recorder = this->recorder();
    recorder.observe(phase("keys"));
    recorder.observe(phase("assembly"));
    Observation failed{};
    failed.kind = ObservationKind::kRunFailed;
    failed.reason = kNotEnoughMemory;
    recorder.observe(failed);
    recorder.finishRun(-42);
    FindingSummary summary;
    summary.exit = 1;
    const RunResult result = recorder.finish({}, summary, {});
    EXPECT_EQ(result.state, ResultState::kFailed);
    EXPECT_EQ(result.phase, "assembly");
    EXPECT_TRUE(result.run.isMemoryShort);
}

TEST_F(ResultRecorderTest, TheIdentityHoldsAllThatTheResultDependsOn) {
    const RunIdentity first = identity();
    EXPECT_EQ(identity().options, first.options);
    EXPECT_EQ(identity().request, first.request);
    const auto differs = [&](auto change) {
        PublishOptions saved = options_;
        change(options_);
        const RunIdentity other = identity();
        options_ = saved;
        return other.options != first.options || other.request != first.request;
    };
    EXPECT_TRUE(differs([](PublishOptions& options) { options.isForPrint = true; }));
    EXPECT_TRUE(differs([](PublishOptions& options) { options.filters = {"a.ditaval"}; }));
    EXPECT_TRUE(differs([](PublishOptions& options) { options.isRelative = true; }));
    EXPECT_TRUE(differs([](PublishOptions& options) { options.mediaFolder = "media"; }));
    EXPECT_TRUE(differs([](PublishOptions& options) { options.allowsMissingFilter = true; }));
    EXPECT_TRUE(differs([](PublishOptions& options) { options.catalogs = {"c.xml"}; }));
    EXPECT_TRUE(
        differs([](PublishOptions& options) { options.diagnostics.failOn = FailOn::kWarning; }));
    EXPECT_TRUE(differs([](PublishOptions& options) {
        options.diagnostics.severities["MP208"] = Severity::kError;
    }));
    EXPECT_TRUE(differs(
        [](PublishOptions& options) { options.diagnostics.format = DiagnosticsFormat::kNone; }));
    EXPECT_TRUE(
        differs([](PublishOptions& options) { options.diagnostics.language = Language::kGerman; }));
    EXPECT_FALSE(differs([](PublishOptions& options) {
        options.diagnostics.format = DiagnosticsFormat::kJson;
    })) << "it only shows the same in another way";
}

TEST_F(ResultRecorderTest, SeveralFiltersStandBesideTheRequest) {
    options_.filters = {"/a.ditaval"};
    EXPECT_NE(identity().request.find(R"("ditaVal":"/a.ditaval")"), std::string::npos);
    options_.filters.emplace_back("/b.ditaval");
    EXPECT_NE(identity().request.find(R"("ditaVal":"")"), std::string::npos);
    EXPECT_NE(identity().options.find(R"("filters":["/a.ditaval","/b.ditaval"])"),
              std::string::npos)
        << identity().options;
}

TEST_F(ResultRecorderTest, TheVersionsAreThoseOfTheProgramAndItsLibraries) {
    EXPECT_TRUE(boost::json::parse(versionsText()).as_object().contains("libxml2"));
}

}  // namespace
}  // namespace marrowpress
