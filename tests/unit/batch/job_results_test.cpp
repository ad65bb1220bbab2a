#include "cli/batch/job_results.h"

#include <gtest/gtest.h>

#include <csignal>

#include "findings/language.h"
#include "results/result_json.h"

namespace marrowpress {
namespace {

class JobResultsTest : public testing::Test {
protected:
    JobResultsTest() {
        chooseLanguage(Language::kEnglish);
        job_.id = "guide";
        job_.options.map = "/n/m.ditamap";
        job_.options.output = "/n/o.dita";
    }
    ~JobResultsTest() override { chooseLanguage(Language::kGerman); }

    RunResult result() const { return resultOf(Plan(), job_, end_, std::chrono::seconds(60)); }

    Job job_;
    JobEnd end_;
};

TEST_F(JobResultsTest, WhatTheProcessToldIsTaken) {
    RunResult told;
    told.id = "guide";
    told.state = ResultState::kClean;
    told.exit = 0;
    end_.result = resultText(told);
    EXPECT_EQ(result().state, ResultState::kClean);
}

TEST_F(JobResultsTest, OneThatWasKilledSaysByWhatAndWhere) {
    end_.signal = 9;
    end_.exit = 137;
    end_.phase = "assembly";
    const RunResult killed = result();
    EXPECT_EQ(killed.id, "guide");
    EXPECT_EQ(killed.state, ResultState::kFailed);
    EXPECT_EQ(killed.exit, 137);
    EXPECT_EQ(killed.signal, 9);
    EXPECT_EQ(killed.phase, "assembly");
    EXPECT_EQ(killed.request, wantedRunOf(Plan(), job_).request);
    ASSERT_EQ(killed.findings.size(), 1U);
    EXPECT_EQ(killed.findings[0].id, "MP301");
    EXPECT_EQ(killed.findings[0].text, "The job was ended by signal 9");
    EXPECT_EQ(killed.findings[0].place.file, "/n/m.ditamap");
}

TEST_F(JobResultsTest, OneThatWasKilledWhileItToldHasNoResultOfItsOwn) {
    RunResult told;
    told.state = ResultState::kClean;
    end_.result = resultText(told);
    end_.signal = 15;
    end_.exit = 143;
    EXPECT_EQ(result().state, ResultState::kFailed);
}

TEST_F(JobResultsTest, OneThatTookTooLongSaysSo) {
    end_.signal = 15;
    end_.exit = 143;
    end_.isOutOfTime = true;
    EXPECT_EQ(result().findings[0].text, "The job took longer than 60 s and was ended");
}

TEST_F(JobResultsTest, OneThatWasNotStartedGivesItsSentence) {
    end_.exit = 2;
    end_.errors = "marrowpress publish: MAP: there is no file /n/m.ditamap\nmore\n";
    EXPECT_EQ(result().exit, 2);
    EXPECT_EQ(result().findings[0].text,
              "The job came to nothing: MAP: there is no file /n/m.ditamap");
}

TEST_F(JobResultsTest, OneThatEndedInSilenceHasFailed) {
    EXPECT_EQ(result().exit, 1);
    EXPECT_EQ(result().findings[0].text, "The job ended with code 0 and no result");
    end_.exit = 3;
    end_.errors = "1 error, 0 warnings in 1 file; 2 topics, 0.1 s\n";
    EXPECT_EQ(result().exit, 1) << "findings without a result are no findings";
    EXPECT_EQ(result().findings[0].text, "The job ended with code 3 and no result");
    end_.result = "{";
    EXPECT_EQ(result().state, ResultState::kFailed) << "half a result is none";
}

TEST_F(JobResultsTest, ASignalAloneDoesNotSayThatMemoryWasShort) {
    end_.signal = SIGKILL;
    EXPECT_FALSE(lackedMemory(end_, result(), /*memoryKills=*/0));
    EXPECT_TRUE(lackedMemory(end_, result(), /*memoryKills=*/1));
    end_.isOutOfTime = true;
    EXPECT_FALSE(lackedMemory(end_, result(), /*memoryKills=*/1)) << "its time was over";
    end_.isOutOfTime = false;
    end_.signal = SIGSEGV;
    EXPECT_FALSE(lackedMemory(end_, result(), /*memoryKills=*/1)) << "it crashed";
}

TEST_F(JobResultsTest, ARunThatMetItsOwnLimitSaysItself) {
    RunResult told;
    told.run.isMemoryShort = true;
    EXPECT_TRUE(lackedMemory(end_, told, /*memoryKills=*/0));
    EXPECT_FALSE(lackedMemory(end_, RunResult(), /*memoryKills=*/1)) << "somebody else was killed";
}

TEST_F(JobResultsTest, AConflictFailsAJobThatWasClean) {
    RunResult clean;
    clean.state = ResultState::kClean;
    clean.exit = 0;
    const RunResult failed = withConflict(clean, "other", "/n/a.dita");
    EXPECT_EQ(failed.state, ResultState::kFailed);
    EXPECT_EQ(failed.exit, 1);
    EXPECT_EQ(failed.findings.back().id, "MP302");
    EXPECT_NE(failed.findings.back().text.find("`other`"), std::string::npos);
    EXPECT_EQ(outcomeOf(failed).errors, 1U);
    EXPECT_TRUE(outcomeOf(failed).hasFailed());
}

}  // namespace
}  // namespace marrowpress
