#include "results/up_to_date.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "results/file_digest.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// The result of a run that has read "map" and missed "later", and written "out".
class UpToDateTest : public testing::Test {
protected:
    UpToDateTest() {
        folder_.write("map", "a map");
        waitATick();
        result_.run.begin = earliestStampFromNow();
        folder_.write("out", "what came of it");
        result_.request = "{}";
        add("map");
        result_.dependencies.push_back({folder_.file("later"), "topic", "absent", {}, {}});
        result_.run.files.emplace_back();
        result_.outputs.push_back({folder_.file("out"), {}});
        result_.run.files.push_back(known("out"));
        result_.run.end = latestStampUntilNow();
    }

    static void waitATick() {
        std::this_thread::sleep_for(std::chrono::nanoseconds(2 * kFileClockTick));
    }

    KnownFile known(const std::string& name) const {
        return {*stampOf(folder_.file(name)), *quickDigestOf(folder_.file(name))};
    }

    void add(const std::string& name) {
        result_.dependencies.push_back({folder_.file(name), "topic", "read", {}, {}});
        result_.run.files.push_back(known(name));
    }

    bool isUpToDate() const { return FileComparison().isUpToDate(result_, wanted_); }

    TemporaryFolder folder_;
    RunResult result_;
    WantedRun wanted_{"{}", "", ""};
};

TEST_F(UpToDateTest, NothingHasChanged) {
    EXPECT_TRUE(isUpToDate());
}

TEST_F(UpToDateTest, AnotherRequestOptionOrVersionIsAnotherRun) {
    for (std::string WantedRun::*const member :
         {&WantedRun::request, &WantedRun::options, &WantedRun::versions}) {
        WantedRun other = wanted_;
        other.*member = R"({"other":1})";
        EXPECT_FALSE(FileComparison().isUpToDate(result_, other));
    }
}

TEST_F(UpToDateTest, ASourceThatHasChangedIsSeen) {
    folder_.write("map", "A map");
    EXPECT_FALSE(isUpToDate());
}

TEST_F(UpToDateTest, ASourceThatIsGoneIsSeen) {
    fs::remove(folder_.file("map"));
    EXPECT_FALSE(isUpToDate());
}

TEST_F(UpToDateTest, AFileThatWasMissingAndHasComeIsSeen) {
    folder_.write("later", "");
    EXPECT_FALSE(isUpToDate());
}

TEST_F(UpToDateTest, AnOutputThatIsGoneOrWasChangedIsSeen) {
    folder_.write("out", "what came of IT");
    EXPECT_FALSE(isUpToDate());
    fs::remove(folder_.file("out"));
    EXPECT_FALSE(isUpToDate());
}

TEST_F(UpToDateTest, APlaceThatWasLookedAtHasToBeAsItWas) {
    folder_.write("there", "component");
    result_.run.places = {{folder_.file("there"), known("there")}, {folder_.file("free"), {}}};
    EXPECT_TRUE(isUpToDate());
    folder_.write("free", "");
    EXPECT_FALSE(isUpToDate());
    fs::remove(folder_.file("free"));
    EXPECT_TRUE(isUpToDate());
    folder_.write("there", "something");
    EXPECT_FALSE(isUpToDate());
}

TEST_F(UpToDateTest, AFileOfWhichNobodyKnowsWhatTheRunMetHasChanged) {
    result_.run.files.front() = unknownFile();
    EXPECT_TRUE(wasChangedMeanwhile(result_));
    EXPECT_FALSE(isUpToDate());
}

TEST_F(UpToDateTest, TouchAloneIsNoChange) {
    fs::last_write_time(folder_.file("map"), fs::file_time_type::clock::now());
    EXPECT_TRUE(isUpToDate());
}

TEST_F(UpToDateTest, ACopyWithTheOldTimeIsAChangeByWhatItHolds) {
    const fs::file_time_type time = fs::last_write_time(folder_.file("map"));
    folder_.write("copy", "A map");
    fs::last_write_time(folder_.file("copy"), time);
    fs::rename(folder_.file("copy"), folder_.file("map"));
    EXPECT_FALSE(isUpToDate());
    folder_.write("copy", "a map");
    fs::rename(folder_.file("copy"), folder_.file("map"));
    EXPECT_TRUE(isUpToDate());
}

TEST_F(UpToDateTest, AFileThatWasChangedInTheTickOfTheRunCountsAsChanged) {
    EXPECT_FALSE(wasChangedMeanwhile(result_));
    result_.run.files.front()->stamp.changed = result_.run.begin;
    EXPECT_TRUE(wasChangedMeanwhile(result_));
    EXPECT_FALSE(isUpToDate());
    result_.run.files.front()->stamp.changed = result_.run.begin - 1;
    EXPECT_FALSE(wasChangedMeanwhile(result_));
}

TEST_F(UpToDateTest, AStampOfWholeSecondsMayBeOfAnyTimeInThem) {
    constexpr std::int64_t kSecond = 1'000'000'000;
    FileStamp& stamp = result_.run.files.front()->stamp;
    stamp.changed = stamp.modified = (result_.run.begin / kSecond) * kSecond;
    EXPECT_TRUE(wasChangedMeanwhile(result_)) << "it may have been changed after the run began";
    EXPECT_FALSE(isUpToDate());
    stamp.changed = stamp.modified = stamp.changed - 3 * kSecond;
    EXPECT_FALSE(wasChangedMeanwhile(result_));
    EXPECT_TRUE(isUpToDate()) << "what it holds is the same";
}

TEST_F(UpToDateTest, ATimeToComeIsTheTraceOfAClockThatWasSetBack) {
    result_.run.files.front()->stamp.changed = result_.run.end + kFileClockTick;
    EXPECT_FALSE(wasChangedMeanwhile(result_));
    EXPECT_TRUE(isUpToDate()) << "what it holds is the same";
}

TEST_F(UpToDateTest, AnOutputThatWasChangedInTheTickOfItsWritingIsSeen) {
    // As if both fell into one tick.
    const FileStamp stamp = result_.run.files.back()->stamp;
    folder_.write("out", "WHAT CAME OF IT");
    result_.run.files.back()->stamp = *stampOf(folder_.file("out"));
    result_.run.end = result_.run.files.back()->stamp.changed;
    EXPECT_EQ(stamp.size, result_.run.files.back()->stamp.size);
    EXPECT_FALSE(isUpToDate());
}

}  // namespace
}  // namespace marrowpress
