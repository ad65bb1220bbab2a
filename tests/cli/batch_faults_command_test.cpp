#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <map>

#include "tests/cli/long_job_fixture.h"
#include "tests/support/texts.h"
#include "tests/support/waiting.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;
using std::chrono::seconds;

/// What hurts a batch from outside: processes that are killed, results that are lost, files that
/// change their times.
class BatchFaultsTest : public LongJobTest {
protected:
    /// One that has ended and that nobody has waited for counts as gone.
    static bool isThere(pid_t process) { return kill(process, 0) == 0 && !isZombie(process); }

    /// Gives a file other bytes of the same number, and the times that it had.
    void changeSilently(const std::string& name, const std::string& from,
                        const std::string& to) const {
        const fs::path path = folder_.path() / name;
        const fs::file_time_type time = fs::last_write_time(path);
        folder_.write(name, replacedAll(folder_.read(name), from, to));
        fs::last_write_time(path, time);
    }
};

TEST_F(BatchFaultsTest, AJobThatCrashesTellsItsSignalAndPhaseAndTheOthersGoOn) {
    writeLongJob();
    CommandSetting setting;
    // With the sanitizer a crash is a report of its own, else.
    setting.variables["ASAN_OPTIONS"] = "handle_segv=0";
    for (const int signal : {SIGSEGV, SIGABRT, SIGKILL}) {
        RunningCommand running(folder_, command({}), setting);
        ASSERT_EQ(kill(workerOf(running), signal), 0);
        const CommandResult ended = running.wait();
        EXPECT_EQ(ended.code, 1) << ended.err;
        const json::object crashed = result("long");
        EXPECT_EQ(crashed.at("state"), "failed");
        EXPECT_EQ(crashed.at("signal"), signal);
        EXPECT_EQ(crashed.at("exit"), 128 + signal);
        EXPECT_TRUE(crashed.at("phase").is_string()) << "no phase after signal " << signal;
        EXPECT_EQ(crashed.at("run").at("tries"), 1)
            << "a signal alone does not say that memory was short";
        EXPECT_EQ(result("two").at("state"), "clean") << ended.err;
    }
    EXPECT_EQ(batch({"--retry-failed"}).code, 0);
    EXPECT_EQ(namesIn("out"), Texts({"long.dita", "two.dita"}));
}

TEST_F(BatchFaultsTest, AJobThatHangsIsKilledWhenItsTimeIsOver) {
    writeLongJob();
    RunningCommand running(folder_, command({"--timeout", "1"}));
    ASSERT_EQ(kill(workerOf(running), SIGSTOP), 0);
    const CommandResult ended = running.wait();
    EXPECT_EQ(ended.code, 1);
    EXPECT_NE(ended.err.find("took longer than 1 s"), std::string::npos) << ended.err;
    const json::object killed = result("long");
    EXPECT_EQ(killed.at("state"), "failed");
    EXPECT_EQ(killed.at("signal"), SIGKILL) << "it did not react to another one";
    EXPECT_TRUE(killed.at("phase").is_string());
    EXPECT_EQ(killed.at("run").at("tries"), 1);
}

TEST_F(BatchFaultsTest, AJobThatDoesNotReactToTheEndOfItsBatchIsKilled) {
    writeLongJob();
    RunningCommand running(folder_, command({}));
    const pid_t worker = workerOf(running);
    ASSERT_EQ(kill(worker, SIGSTOP), 0);
    const auto sent = std::chrono::steady_clock::now();
    running.send(SIGTERM);
    EXPECT_EQ(running.wait().code, 1000 + SIGTERM);
    // Two seconds are promised; the rest is for a machine that is busy.
    EXPECT_LT(std::chrono::steady_clock::now() - sent, seconds(4));
    EXPECT_FALSE(isThere(worker));
    EXPECT_EQ(namesIn("marrowpress-results"), Texts());
    EXPECT_EQ(batch({"--resume"}).code, 0);
    EXPECT_EQ(namesIn("out"), Texts({"long.dita", "two.dita"})) << "what it left goes then";
}

TEST_F(BatchFaultsTest, MoreJobsAtOneTimeThanThereIsRoomForWait) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "UndefinedBehaviorSanitizer needs descriptors to look at an object's type";
#endif
    std::string lines;
    for (int number = 0; number < 20; ++number) {
        const std::string id = "j" + std::to_string(number);
        lines += job(id, "docs/one.ditamap", "out/" + id + ".dita");
    }
    folder_.write("jobs.jsonl", lines);
    for (unsigned handles = 24; handles < 28; ++handles) {
        CommandSetting setting;
        setting.mostHandles = handles;
        const CommandResult ended = batch({"-j", "20"}, setting);
        EXPECT_EQ(ended.code, 0) << handles << ": " << ended.err;
    }
}

TEST_F(BatchFaultsTest, ABatchHearsOfItsJobsAlsoWhereItsCallerIgnoresThatChildrenEnd) {
    writeTwoJobs();
    CommandSetting setting;
    setting.ignoredSignals = {SIGCHLD};
    EXPECT_EQ(batch({"--timeout", "20"}, setting).code, 0);
    EXPECT_EQ(result("two").at("state"), "clean");
}

TEST_F(BatchFaultsTest, ABatchOutlivesItsTerminalWhereItsCallerIgnoresThatItHangsUp) {
    writeLongJob();
    CommandSetting setting;
    setting.ignoredSignals = {SIGHUP};
    RunningCommand running(folder_, command({}), setting);
    workerOf(running);
    running.send(SIGHUP);
    EXPECT_EQ(running.wait().code, 0);
    EXPECT_EQ(namesIn("out"), Texts({"long.dita", "two.dita"}));
}

TEST_F(BatchFaultsTest, WhenABatchIsKilledItsJobCleansUpAndResumeRunsTheRest) {
    writeTwoJobs();
    ASSERT_EQ(batch({"--select", "two"}).code, 0);
    const std::string two = folder_.read("marrowpress-results/two.json");
    writeLongJob();
    RunningCommand running(folder_, command({"--resume"}));
    const pid_t worker = workerOf(running);
    running.send(SIGKILL);
    EXPECT_EQ(running.wait().code, 1000 + SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return !isThere(worker); }));
    EXPECT_EQ(namesIn("out"), Texts({"two.dita"}));
    EXPECT_EQ(namesIn("marrowpress-results"), Texts({"two.json"}));
    EXPECT_EQ(batch({"--resume"}).code, 0);
    EXPECT_EQ(result("long").at("state"), "clean");
    EXPECT_EQ(folder_.read("marrowpress-results/two.json"), two);
}

TEST_F(BatchFaultsTest, ThePrivateFolderOfABatchThatRunsIsLeftAloneByTheNextOne) {
    writeLongJob();
    RunningCommand running(folder_, command({"--select", "long"}));
    const pid_t worker = workerOf(running);
    ASSERT_EQ(kill(worker, SIGSTOP), 0);
    const std::string folder = privateName();
    EXPECT_EQ(batch({"--select", "two", "--results", "others"}).code, 0);
    EXPECT_EQ(privateName(), folder);
    ASSERT_EQ(kill(worker, SIGCONT), 0);
    EXPECT_EQ(running.wait().code, 0);
    EXPECT_EQ(namesIn("out"), Texts({"long.dita", "two.dita"}));
}

TEST_F(BatchFaultsTest, WhatIsNoResultOfTheJobCountsAsAbsentWithOneWarning) {
    writeTwoJobs();
    ASSERT_EQ(batch().code, 0);
    const std::string own = folder_.read("marrowpress-results/one.json");
    const std::map<std::string, std::string> faults{
        {own.substr(0, own.size() / 2), "it is no JSON object, or is cut off"},
        {folder_.read("marrowpress-results/two.json"), "it is the result of `two`"},
        {replacedAll(own, R"("format":1)", R"("format":2)"), "it is of a newer version"},
        {"", "it is no JSON object, or is cut off"}};
    for (const auto& [text, reason] : faults) {
        folder_.write("marrowpress-results/one.json", text);
        const CommandResult again = batch({"--resume", "--summary", "all.json"});
        EXPECT_EQ(again.code, 0) << again.err;
        const std::string warning = "one.json counts as absent: " + reason;
        EXPECT_NE(again.err.find(warning), std::string::npos) << again.err;
        EXPECT_EQ(again.err.find(warning), again.err.rfind(warning)) << again.err;
        EXPECT_NE(again.err.find("two: clean, up to date"), std::string::npos) << again.err;
        EXPECT_EQ(result("one").at("id"), "one");
    }
}

TEST_F(BatchFaultsTest, WhatAFileHoldsDecidesAndNotItsTime) {
    writeTopic("one", "first text");
    writeTwoJobs();
    ASSERT_EQ(batch().code, 0);
    const auto upToDate = [this](const char* id) {
        return batch({"--resume"}).err.find(std::string(id) + ": clean, up to date") !=
               std::string::npos;
    };
    fs::last_write_time(folder_.path() / "docs/one.dita", fs::file_time_type::clock::now());
    EXPECT_TRUE(upToDate("one")) << "touched";
    fs::last_write_time(folder_.path() / "docs/one.dita",
                        fs::file_time_type::clock::now() - std::chrono::hours(48));
    EXPECT_TRUE(upToDate("one")) << "with a time of another day";
    changeSilently("docs/one.dita", "first text", "other text");
    EXPECT_FALSE(upToDate("one")) << "changed, with the time that it had";
    EXPECT_NE(folder_.read("out/one.dita").find("other text"), std::string::npos);
    changeSilently("out/one.dita", "other text", "third text");
    EXPECT_FALSE(upToDate("one")) << "an output, too";
    EXPECT_TRUE(upToDate("two"));
}

TEST_F(BatchFaultsTest, ResultsThatCannotBeWrittenEndItWithOneAndCountAsNotRun) {
    writeTwoJobs();
    ASSERT_EQ(batch({"--select", "two"}).code, 0);
    CommandSetting full;
    full.largestFile = 1000;
    const CommandResult lost = batch({"--resume"}, full);
    EXPECT_EQ(lost.code, 1);
    EXPECT_NE(lost.err.find("`one` counts as not run"), std::string::npos) << lost.err;
    EXPECT_EQ(namesIn("marrowpress-results"), Texts({"two.json"}));
    const CommandResult again = batch({"--resume"});
    EXPECT_EQ(again.code, 0) << again.err;
    EXPECT_EQ(result("one").at("state"), "clean");
    EXPECT_NE(again.err.find("two: clean, up to date"), std::string::npos) << again.err;
}

TEST_F(BatchFaultsTest, AMapThatIsMissingFailsItsOwnJobAlone) {
    writeTwoJobs();
    fs::remove(folder_.path() / "docs/one.ditamap");
    const CommandResult ended = batch();
    EXPECT_EQ(ended.code, 1) << ended.err;
    EXPECT_EQ(result("one").at("state"), "failed");
    EXPECT_NE(ended.err.find("MAP: cannot read"), std::string::npos) << ended.err;
    EXPECT_EQ(result("two").at("state"), "clean");
    folder_.write("docs/one.ditamap", mapOf("one"));
    EXPECT_EQ(batch({"--resume"}).code, 0) << "it runs as soon as it has come";
}

}  // namespace
}  // namespace marrowpress
