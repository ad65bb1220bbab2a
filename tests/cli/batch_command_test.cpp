#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <csignal>
#include <filesystem>
#include <map>
#include <string>
#include <utility>

#include "tests/cli/batch_fixture.h"
#include "tests/support/waiting.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

TEST_F(BatchTest, EachJobsOutputIsThatOfItsOwnPublish) {
    writeTwoJobs();
    const CommandResult result = batch({"-j", "2"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(namesIn("out"), Texts({"one.dita", "two.dita"})) << "no private folder is left";
    for (const std::string name : {"one", "two"}) {
        ASSERT_EQ(run({"publish", "docs/" + name + ".ditamap", "-f", "composite", "-o",
                       "alone.dita", "--catalog", "catalog.xml"})
                      .code,
                  0);
        EXPECT_EQ(folder_.read("out/" + name + ".dita"), folder_.read("alone.dita"));
    }
}

TEST_F(BatchTest, TheTableAndTheLinesTellWhatEachJobCameTo) {
    writeTwoJobs();
    const CommandResult result = batch({"-j", "1"});
    EXPECT_TRUE(result.out.starts_with("JOB  STATE  EXIT  ERRORS  WARNINGS  TIME   MEMORY\n"))
        << result.out;
    EXPECT_NE(result.out.find("\n2 jobs: 2 clean; "), std::string::npos) << result.out;
    EXPECT_NE(result.err.find("[1/2] one: clean, "), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("[2/2] two: clean, "), std::string::npos) << result.err;
}

TEST_F(BatchTest, AResultTellsAllOfItsJob) {
    writeTwoJobs();
    ASSERT_EQ(batch().code, 0);
    const json::object one = result("one");
    EXPECT_EQ(one.at("id"), "one");
    EXPECT_EQ(one.at("state"), "clean");
    EXPECT_EQ(one.at("exit"), 0);
    EXPECT_TRUE(one.at("signal").is_null());
    EXPECT_TRUE(one.at("phase").is_null());
    EXPECT_EQ(one.at("status"), 0);
    EXPECT_EQ(one.at("request").at("params").at("output"),
              json::value(folder_.file("out/one.dita")));
    ASSERT_EQ(one.at("outputs").as_array().size(), 1U);
    EXPECT_EQ(one.at("outputs").at(0).at("path"), json::value(folder_.file("out/one.dita")));
    std::size_t sources = 0;
    for (const json::value& file : one.at("dependencies").as_array()) {
        const std::string path(file.at("file").as_string());
        sources += path == folder_.file("docs/one.ditamap") || path == folder_.file("docs/one.dita")
                       ? 1U
                       : 0U;
    }
    EXPECT_EQ(sources, 2U);
}

TEST_F(BatchTest, WhateverTheWidthTheResultsAreTheSameApartFromTheRun) {
    writeTwoJobs();
    ASSERT_EQ(batch({"-j", "1", "--results", "alone"}).code, 0);
    ASSERT_EQ(batch({"-j", "2", "--results", "together"}).code, 0);
    for (const char* const id : {"one", "two"}) {
        EXPECT_EQ(lasting(id, "alone"), lasting(id, "together"));
    }
}

TEST_F(BatchTest, FindingsEndItWithThreeAndAFailedJobWithOne) {
    writeTopic("two", R"(<ph keyref="nowhere"/>)");
    writeTwoJobs();
    EXPECT_EQ(batch().code, 3);
    EXPECT_EQ(result("two").at("state"), "findings");
    folder_.write("docs/two.ditamap", "<map><topicref href=");
    const CommandResult failed = batch();
    EXPECT_EQ(failed.code, 1) << failed.err;
    EXPECT_EQ(result("two").at("state"), "failed");
    EXPECT_EQ(result("one").at("state"), "clean") << "the others go on";
    EXPECT_EQ(batch({"--fail-on", "never"}).code, 1);
}

TEST_F(BatchTest, WithFailFastNoJobStartsAfterAFailedOne) {
    folder_.write("docs/one.ditamap", "<map><topicref href=");
    writeTwoJobs();
    const CommandResult result = batch({"-j", "1", "--fail-fast"});
    EXPECT_EQ(result.code, 1);
    EXPECT_NE(result.out.find("1 failed, 1 not run"), std::string::npos) << result.out;
    EXPECT_FALSE(folder_.exists("marrowpress-results/two.json"));
}

TEST_F(BatchTest, ResumePassesOverWhatIsUpToDate) {
    writeTwoJobs();
    ASSERT_EQ(batch().code, 0);
    const std::string first = folder_.read("marrowpress-results/one.json");
    const CommandResult again = batch({"--resume"});
    EXPECT_EQ(again.code, 0);
    EXPECT_NE(again.err.find("one: clean, up to date"), std::string::npos) << again.err;
    EXPECT_EQ(folder_.read("marrowpress-results/one.json"), first);
}

TEST_F(BatchTest, ResumeRunsAJobWhoseTopicOrOutputHasChanged) {
    writeTwoJobs();
    ASSERT_EQ(batch().code, 0);
    writeTopic("one", "changed");
    fs::remove(folder_.path() / "out/two.dita");
    const CommandResult again = batch({"--resume"});
    EXPECT_EQ(again.err.find("up to date"), std::string::npos) << again.err;
    EXPECT_NE(folder_.read("out/one.dita").find("changed"), std::string::npos);
    EXPECT_TRUE(folder_.exists("out/two.dita"));
}

TEST_F(BatchTest, ResumeRunsAJobWhenAMissingFileHasCome) {
    folder_.write("docs/one.ditamap", mapOf("later"));
    writeTwoJobs();
    ASSERT_EQ(batch().code, 3);
    EXPECT_EQ(batch({"--resume"}).code, 3) << "its exit code counts again";
    writeTopic("later", "here");
    const CommandResult again = batch({"--resume"});
    EXPECT_EQ(again.code, 0) << again.err;
    EXPECT_NE(again.err.find("two: clean, up to date"), std::string::npos) << again.err;
}

TEST_F(BatchTest, RetryFailedRunsFailedJobsThatResumePassesOver) {
    folder_.write("docs/one.ditamap", "<map><topicref href=");
    writeTwoJobs();
    ASSERT_EQ(batch().code, 1);
    EXPECT_NE(batch({"--resume"}).err.find("one: failed, 1 error, up to date"), std::string::npos);
    const CommandResult retried = batch({"--retry-failed"});
    EXPECT_EQ(retried.code, 1);
    EXPECT_EQ(retried.err.find("one: failed, 1 error, up to date"), std::string::npos);
    EXPECT_NE(retried.err.find("two: clean, up to date"), std::string::npos) << retried.err;
}

TEST_F(BatchTest, AResultThatIsCutOffCountsAsAbsentWithAWarning) {
    writeTwoJobs();
    ASSERT_EQ(batch().code, 0);
    const fs::path file = folder_.path() / "marrowpress-results/one.json";
    fs::resize_file(file, fs::file_size(file) / 2);
    const CommandResult again = batch({"--resume"});
    EXPECT_EQ(again.code, 0);
    EXPECT_NE(again.err.find("one.json counts as absent"), std::string::npos) << again.err;
    EXPECT_EQ(result("one").at("state"), "clean");
}

TEST_F(BatchTest, SelectAndTagTakeSomeOfTheJobs) {
    writeTwoJobs();
    EXPECT_EQ(batch({"--select", "t*"}).code, 0);
    EXPECT_EQ(namesIn("out"), Texts({"two.dita"}));
    EXPECT_EQ(batch({"--tag", "a"}).code, 0);
    EXPECT_EQ(namesIn("out"), Texts({"one.dita", "two.dita"}));
    EXPECT_EQ(batch({"--tag", "none"}).code, 2);
}

TEST_F(BatchTest, ListAndDryRunWriteNothing) {
    writeTwoJobs();
    folder_.write("out/one.dita", "");
    const CommandResult listed = run({"batch", "list", "jobs.jsonl"});
    EXPECT_EQ(listed.code, 0);
    EXPECT_NE(listed.out.find("one  composite  docs/one.ditamap"), std::string::npos) << listed.out;
    const CommandResult dry = batch({"--dry-run"});
    EXPECT_EQ(dry.code, 0) << dry.err;
    EXPECT_NE(dry.out.find("out/one.dita (is replaced)\n"), std::string::npos) << dry.out;
    EXPECT_NE(dry.out.find("out/two.dita\n"), std::string::npos) << dry.out;
    EXPECT_EQ(namesIn("out"), Texts({"one.dita"}));
    EXPECT_FALSE(folder_.exists("marrowpress-results"));
}

TEST_F(BatchTest, CheckWritesResultsAndNoOutput) {
    writeTopic("two", R"(<ph keyref="nowhere"/>)");
    writeTwoJobs();
    const CommandResult checked = run({"batch", "check", "jobs.jsonl", "--catalog", "catalog.xml"});
    EXPECT_EQ(checked.code, 3) << checked.err;
    EXPECT_NE(checked.err.find("[MP105]"), std::string::npos) << checked.err;
    EXPECT_EQ(namesIn("out"), Texts());
    EXPECT_TRUE(result("one").at("outputs").as_array().empty());
}

TEST_F(BatchTest, JsonFindingsNameTheirJob) {
    writeTopic("two", R"(<ph keyref="nowhere"/>)");
    writeTwoJobs();
    const CommandResult result = batch({"--diagnostics", "json", "-j", "1"});
    EXPECT_NE(result.err.find(R"({"job":"two","id":"MP105",)"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find(R"({"job":"one","summary":)"), std::string::npos) << result.err;
    EXPECT_TRUE(result.err.starts_with("{")) << "nothing but JSON";
}

TEST_F(BatchTest, AFlatBookRunsInItsPlace) {
    folder_.write("jobs.jsonl", bookJob("book", "docs/one.ditamap", folder_.file("book")) +
                                    job("two", "docs/two.ditamap", "out/two.dita"));
    ASSERT_EQ(batch({"-j", "2"}).code, 0);
    EXPECT_EQ(namesIn("book"), Texts({"one.qs"}));
    EXPECT_EQ(result("book").at("outputs").at(0).at("path"),
              json::value(folder_.file("book/one.qs")));
}

TEST_F(BatchTest, FlatBooksThatAreKnownToStayApartRunAtOneTime) {
    fs::create_directory(folder_.path() / "more");
    fs::copy(folder_.path() / "docs", folder_.path() / "more");
    folder_.write("jobs.jsonl", bookJob("first", "docs/one.ditamap", folder_.file("book1")) +
                                    bookJob("second", "more/one.ditamap", folder_.file("book2")));
    const auto areAtOneTime = [this] {
        const json::object first = result("first").at("run").as_object();
        const json::object second = result("second").at("run").as_object();
        return second.at("begin").as_int64() < first.at("end").as_int64() &&
               first.at("begin").as_int64() < second.at("end").as_int64();
    };
    ASSERT_EQ(batch({"-j", "2"}).code, 0);
    EXPECT_FALSE(areAtOneTime()) << "nothing was known of them";
    const std::string book = folder_.read("book2/one.qs");
    // They may be at one time, and are unless the machine is slow to start the second.
    EXPECT_TRUE(waitUntil([&] { return batch({"-j", "2"}).code != 0 || areAtOneTime(); }));
    EXPECT_TRUE(areAtOneTime());
    EXPECT_EQ(folder_.read("book2/one.qs"), book);
}

TEST_F(BatchTest, ACompositeThatReadsItsOwnPlaceIsMadeThere) {
    folder_.write("docs/one.ditamap",
                  R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd"><map>)"
                  R"(<topicref href="one.dita"/><topicref href="../out/one.dita"/></map>)");
    writeTwoJobs();
    const CommandResult result = batch({"-j", "2", "--fail-on", "never"});
    const std::string made = folder_.read("out/one.dita");
    fs::remove(folder_.path() / "out/one.dita");
    ASSERT_EQ(run({"publish", "docs/one.ditamap", "-f", "composite", "-o", "out/one.dita",
                   "--catalog", "catalog.xml", "--fail-on", "never"})
                  .code,
              result.code);
    EXPECT_EQ(made, folder_.read("out/one.dita"));
}

TEST_F(BatchTest, WhatARelativeSystemIdentifierLeadsToIsFoundFromThePlace) {
    folder_.write("out/own.dtd", "");
    folder_.write("jobs.jsonl",
                  R"({"id":"one","request":{"type":"PublishComp","params":{"ditamap":)"
                  R"("docs/one.ditamap","output":"out/one.dita","ditaVal":"","keyspaceDocDtd":)"
                  R"("map.dtd","compositeDocDtd":"own.dtd","usePrint":false}}})"
                  "\n");
    const CommandResult result = batch();
    ASSERT_EQ(run({"publish", "docs/one.ditamap", "-f", "composite", "-o", "out/alone.dita",
                   "--composite-dtd", "own.dtd", "--catalog", "catalog.xml"})
                  .code,
              result.code);
    EXPECT_EQ(folder_.read("out/one.dita"), folder_.read("out/alone.dita"));
}

TEST_F(BatchTest, TwoJobsOntoOneOutputAreRefused) {
    folder_.write("jobs.jsonl", job("one", "docs/one.ditamap", "out/same.dita") +
                                    job("two", "docs/two.ditamap", "out/same.dita"));
    const CommandResult result = batch();
    EXPECT_EQ(result.code, 2);
    EXPECT_NE(result.err.find("`one` and `two` write the same file"), std::string::npos)
        << result.err;
    EXPECT_EQ(namesIn("out"), Texts()) << "nothing was started";
}

TEST_F(BatchTest, APlanWithTwoJobsOntoOneOutputIsRefusedWherever) {
    folder_.write("jobs.jsonl", job("one", "docs/one.ditamap", "out/same.dita") +
                                    job("two", "docs/two.ditamap", "out/same.dita"));
    const CommandResult plan = run({"batch", "plan", "jobs.jsonl", "--plan", "plan.jsonl"});
    EXPECT_EQ(plan.code, 2);
    EXPECT_NE(plan.err.find("`one` and `two` write the same file"), std::string::npos) << plan.err;
    EXPECT_FALSE(folder_.exists("plan.jsonl"));
    EXPECT_EQ(run({"batch", "emit", "ninja", "jobs.jsonl"}).code, 2);
    ASSERT_EQ(run({"batch", "plan", "jobs.jsonl", "--plan", "plan.jsonl", "--check"}).code, 0)
        << "nothing is written then";
}

TEST_F(BatchTest, JobsOfAPlanThatGetIntoEachOthersWayFailWhenTheyAreMerged) {
    folder_.write("docs/two.ditamap", mapOf("../out/one"));
    writeTwoJobs();
    ASSERT_EQ(
        run({"batch", "plan", "jobs.jsonl", "--plan", "plan.jsonl", "--catalog", "catalog.xml"})
            .code,
        0);
    for (const char* const index : {"0", "1"}) {
        run({"batch", "run", "plan.jsonl", "--index", index});
    }
    for (int times = 0; times < 2; ++times) {
        const CommandResult merged = run({"batch", "merge", "marrowpress-results", "--plan",
                                          "plan.jsonl", "--summary", "all.json"});
        EXPECT_EQ(merged.code, 1) << merged.err;
        EXPECT_NE(merged.err.find("`one` and `two` write and read"), std::string::npos)
            << merged.err;
        const json::value summary = json::parse(folder_.read("all.json"));
        for (const json::value& failed : summary.at("jobs").as_array()) {
            EXPECT_EQ(failed.at("state"), "failed");
            const json::array& findings = failed.at("findings").as_array();
            EXPECT_EQ(std::count_if(
                          findings.begin(), findings.end(),
                          [](const json::value& finding) { return finding.at("id") == "MP302"; }),
                      1);
        }
    }
}

TEST_F(BatchTest, AnOutputThatAnotherJobReadsIsRefusedWhenAResultTellsAndFailsBothElse) {
    folder_.write("docs/two.ditamap", mapOf("../out/one"));
    writeTwoJobs();
    const CommandResult first = batch({"-j", "1"});
    EXPECT_EQ(first.code, 1) << first.err;
    for (const char* const id : {"one", "two"}) {
        EXPECT_EQ(result(id).at("state"), "failed");
        EXPECT_EQ(result(id).at("findings").as_array().back().at("id"), "MP302");
    }
    const CommandResult second = batch({"-j", "1"});
    EXPECT_EQ(second.code, 2);
    EXPECT_NE(second.err.find("`two` reads what `one` writes"), std::string::npos) << second.err;
    folder_.write("docs/two.ditamap", mapOf("two"));
    EXPECT_EQ(batch().code, 0) << "what was mended is tried";
}

TEST_F(BatchTest, AMissingFolderIsMadeAndStaysForThoseThatWriteThere) {
    folder_.write("docs/one.ditamap", "<map><topicref href=");
    folder_.write("jobs.jsonl", job("one", "docs/one.ditamap", "new/sub/one.dita") +
                                    job("two", "docs/two.ditamap", "new/sub/two.dita"));
    EXPECT_EQ(batch({"-j", "1"}).code, 1);
    EXPECT_EQ(namesIn("new/sub"), Texts({"two.dita"}));
    folder_.write("jobs.jsonl", job("one", "docs/one.ditamap", "other/sub/one.dita"));
    EXPECT_EQ(batch().code, 1);
    EXPECT_FALSE(folder_.exists("other")) << "nothing came into it";
}

TEST_F(BatchTest, SerializedAJobReadsWhatAnotherOneHasWritten) {
    folder_.write("jobs.jsonl", job("reader", "docs/reader.ditamap", "out/reader.dita") +
                                    job("one", "docs/one.ditamap", "out/one.dita"));
    folder_.write("docs/reader.ditamap",
                  R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd"><map>)"
                  R"(<topicref href="../out/one.dita"/></map>)");
    EXPECT_EQ(batch({"--serialize", "--fail-on", "never"}).code, 0);
    EXPECT_NE(folder_.read("out/reader.dita").find(">one<"), std::string::npos)
        << "what nobody knew before the first run, either";
    EXPECT_EQ(batch({"--fail-on", "never"}).code, 2) << "without it that is a fault";
    writeTopic("one", "made first");
    EXPECT_EQ(batch({"--serialize", "--fail-on", "never"}).code, 0);
    EXPECT_NE(folder_.read("out/reader.dita").find("made first"), std::string::npos);
}

TEST_F(BatchTest, AFileThatNoRunWroteIsNotReplaced) {
    writeTwoJobs();
    folder_.write("out/two.dita", "<mine/>");
    const CommandResult result = batch();
    EXPECT_EQ(result.code, 2) << result.err;
    EXPECT_NE(result.err.find("jobs.jsonl:2: two: --output"), std::string::npos) << result.err;
    EXPECT_EQ(folder_.read("out/two.dita"), "<mine/>");
    EXPECT_FALSE(folder_.exists("out/one.dita"));
}

TEST_F(BatchTest, APlanRunByItsPartsMergesToWhatALocalBatchGives) {
    writeTopic("two", R"(<ph keyref="nowhere"/>)");
    writeTwoJobs();
    ASSERT_EQ(batch({"--results", "local", "--summary", "local.json", "--sarif", "local.sarif",
                     "--junit", "local.xml"})
                  .code,
              3);
    ASSERT_EQ(
        run({"batch", "plan", "jobs.jsonl", "--plan", "plan.jsonl", "--catalog", "catalog.xml"})
            .code,
        0);
    EXPECT_EQ(run({"batch", "run", "plan.jsonl", "--index", "1", "--results", "parts"}).code, 3);
    EXPECT_EQ(run({"batch", "merge", "parts", "--plan", "plan.jsonl"}).code, 1)
        << "a job without a result has failed";
    EXPECT_EQ(run({"batch", "run", "plan.jsonl", "--shard", "1/2", "--results", "parts"}).code, 0);
    const CommandResult merged = run({"batch", "merge", "parts", "--plan", "plan.jsonl",
                                      "--summary", "parts.json", "--sarif", "parts.sarif"});
    EXPECT_EQ(merged.code, 3) << merged.err;
    for (const char* const id : {"one", "two"}) {
        EXPECT_EQ(lasting(id, "local"), lasting(id, "parts"));
    }
    EXPECT_EQ(folder_.read("local.sarif"), folder_.read("parts.sarif"));
    json::value summary = json::parse(folder_.read("parts.json"));
    EXPECT_EQ(summary.at("exit"), 3);
    EXPECT_EQ(summary.at("jobs").at(0).at("id"), "one");
    EXPECT_EQ(summary.at("jobs").at(1).at("id"), "two");
    EXPECT_NE(folder_.read("local.xml").find(R"(<testsuite name="two")"), std::string::npos);
}

TEST_F(BatchTest, TheIndexMayComeFromAnEngine) {
    writeTwoJobs();
    ASSERT_EQ(
        run({"batch", "plan", "jobs.jsonl", "--plan", "plan.jsonl", "--catalog", "catalog.xml"})
            .code,
        0);
    const Texts command{"batch", "run", "plan.jsonl", "--index", "env"};
    const auto with = [](std::map<std::string, std::string> variables) {
        CommandSetting setting;
        setting.variables = std::move(variables);
        return setting;
    };
    EXPECT_EQ(run(command).code, 2) << "none is set";
    EXPECT_EQ(run(command, with({{"PARALLEL_SEQ", "2"}, {"CI_NODE_INDEX", "1"}})).code, 2);
    EXPECT_EQ(run(command, with({{"SLURM_ARRAY_TASK_ID", "2"}})).code, 2) << "outside the plan";
    EXPECT_EQ(run(command, with({{"PARALLEL_SEQ", "2"}})).code, 0);
    EXPECT_EQ(namesIn("out"), Texts({"two.dita"}));
    EXPECT_EQ(run(command, with({{"JOB_COMPLETION_INDEX", "0"}})).code, 0);
    EXPECT_EQ(namesIn("out"), Texts({"one.dita", "two.dita"}));
}

TEST_F(BatchTest, APlanThatWasChangedOrIsOfAnotherVersionIsRefused) {
    writeTwoJobs();
    ASSERT_EQ(
        run({"batch", "plan", "jobs.jsonl", "--plan", "plan.jsonl", "--catalog", "catalog.xml"})
            .code,
        0);
    const std::string plan = folder_.read("plan.jsonl");
    ASSERT_EQ(run({"batch", "run", "plan.jsonl"}).code, 0);
    std::string changed = plan;
    changed.replace(changed.find(R"("usePrint":false)"), 16, R"("usePrint":true )");
    folder_.write("plan.jsonl", changed);
    const CommandResult byHand = run({"batch", "run", "plan.jsonl"});
    EXPECT_EQ(byHand.code, 2);
    EXPECT_NE(byHand.err.find("the plan was changed"), std::string::npos) << byHand.err;
    folder_.write("plan.jsonl", "{\"plan\":99" + plan.substr(std::string("{\"plan\":1").size()));
    const CommandResult newer = run({"batch", "run", "plan.jsonl"});
    EXPECT_EQ(newer.code, 2);
    EXPECT_NE(newer.err.find("a plan of another version"), std::string::npos) << newer.err;
    folder_.write("jobs.jsonl", job("one", "docs/two.ditamap", "out/one.dita"));
    ASSERT_EQ(run({"batch", "plan", "jobs.jsonl", "--plan", "other.jsonl"}).code, 0);
    const CommandResult merged =
        run({"batch", "merge", "marrowpress-results", "--plan", "other.jsonl"});
    EXPECT_EQ(merged.code, 2);
    EXPECT_NE(merged.err.find("of another plan"), std::string::npos) << merged.err;
}

TEST_F(BatchTest, AJobThatTakesTooLongIsEndedAndTheOthersGoOn) {
    folder_.write("book/.keep", "");
    folder_.write("jobs.jsonl", bookJob("book", "docs/one.ditamap", folder_.file("book")) +
                                    job("two", "docs/two.ditamap", "out/two.dita"));
    // A run waits for ten seconds for a folder that another one holds.
    const int held = open(folder_.file("book").c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    const CommandResult ended = batch({"--timeout", "1"});
    close(held);
    EXPECT_EQ(ended.code, 1) << ended.err;
    EXPECT_NE(ended.err.find("took longer than 1 s"), std::string::npos) << ended.err;
    EXPECT_EQ(result("book").at("state"), "failed");
    EXPECT_EQ(result("book").at("signal"), SIGTERM);
    EXPECT_EQ(result("book").at("exit"), 128 + SIGTERM);
    EXPECT_EQ(result("two").at("state"), "clean");
}

TEST_F(BatchTest, ACatalogThatCannotBeUsedStartsNothing) {
    writeTwoJobs();
    const CommandResult refused = run({"batch", "jobs.jsonl", "--catalog", "none.xml"});
    EXPECT_EQ(refused.code, 2);
    EXPECT_NE(refused.err.find("--catalog"), std::string::npos) << refused.err;
    EXPECT_FALSE(folder_.exists("marrowpress-results"));
}

TEST_F(BatchTest, ASignalEndsTheRunningJobsWhichLeaveNothing) {
    std::string lines;
    for (int number = 0; number < 60; ++number) {
        const std::string name = "j" + std::to_string(number);
        lines += job(name, "docs/one.ditamap", "out/" + name + ".dita");
    }
    folder_.write("jobs.jsonl", lines);
    RunningCommand running(folder_, {"batch", "jobs.jsonl", "--catalog", "catalog.xml", "-j", "2"});
    ASSERT_TRUE(waitUntil([&] { return folder_.exists("marrowpress-results/j3.json"); }));
    running.send(SIGTERM);
    EXPECT_EQ(running.wait().code, 1000 + SIGTERM);
    std::size_t results = 0;
    for (const std::string& name : namesIn("out")) {
        EXPECT_FALSE(name.starts_with(".")) << name;
    }
    for (const std::string& name : namesIn("marrowpress-results")) {
        EXPECT_TRUE(name.ends_with(".json")) << name;
        ++results;
    }
    EXPECT_LT(results, 60U);
    EXPECT_EQ(batch({"--resume"}).code, 0);
    EXPECT_EQ(namesIn("out").size(), 60U);
}

TEST_F(BatchTest, APrivateFolderOfAKilledJobGoesWithTheNextBatchAndForeignOnesStay) {
    writeTwoJobs();
    folder_.write("out/.marrowpress-killed/owner",
                  "A private folder of marrowpress, which removes it.\n");
    folder_.write("out/.marrowpress-killed/work/one.dita", "half");
    folder_.write("out/.marrowpress-mine/file", "mine");
    ASSERT_EQ(batch().code, 0);
    EXPECT_EQ(namesIn("out"), Texts({".marrowpress-mine", "one.dita", "two.dita"}));
}

TEST_F(BatchTest, PagesOfTheJobsHaveAnIndex) {
    writeTwoJobs();
    ASSERT_EQ(batch({"--report", "pages"}).code, 0);
    EXPECT_EQ(namesIn("pages"), Texts({"index.html", "one.html", "two.html"}));
    EXPECT_NE(folder_.read("pages/index.html").find(R"(<a href="./two.html">two</a>)"),
              std::string::npos);
    EXPECT_EQ(folder_.read("pages/one.html").find(".marrowpress-"), std::string::npos);
}

TEST_F(BatchTest, ResumeRunsAJobWhosePageIsMissingOrOfAnEarlierRun) {
    writeTwoJobs();
    const auto pages = [this](const Texts& more) { return batch(more).err; };
    const Texts wanted{"--resume", "--report", "pages"};
    ASSERT_EQ(batch().code, 0);
    EXPECT_EQ(pages(wanted).find("up to date"), std::string::npos);
    EXPECT_TRUE(folder_.exists("pages/one.html"));
    EXPECT_NE(pages(wanted).find("two: clean, up to date"), std::string::npos);
    writeTopic("one", "another text");
    ASSERT_EQ(batch({"--resume"}).code, 0);
    const std::string told = pages(wanted);
    EXPECT_EQ(told.find("one: clean, up to date"), std::string::npos) << told;
    EXPECT_NE(told.find("two: clean, up to date"), std::string::npos) << told;
}

TEST_F(BatchTest, NoReportTakesThePlaceOfAnotherFile) {
    writeTwoJobs();
    const std::string jobs = folder_.read("jobs.jsonl");
    const std::string topic = folder_.read("docs/one.dita");
    for (const char* const option : {"--summary", "--sarif", "--junit"}) {
        for (const char* const file : {"docs/one.dita", "docs/../jobs.jsonl", "out/one.dita",
                                       "marrowpress-results/two.json"}) {
            const CommandResult refused = batch({option, file});
            EXPECT_EQ(refused.code, 2);
            EXPECT_NE(refused.err.find(std::string(option) + ": " + file), std::string::npos)
                << refused.err;
        }
    }
    EXPECT_EQ(batch({"--summary", "same.json", "--sarif", "./same.json"}).code, 2);
    folder_.write("pages/index.html", "<html>");
    EXPECT_EQ(batch({"--report", "pages"}).code, 2);
    EXPECT_EQ(batch({"--summary", "none/s.json"}).code, 2);
    EXPECT_FALSE(folder_.exists("marrowpress-results")) << "nothing was started";
    EXPECT_EQ(folder_.read("jobs.jsonl"), jobs);
    EXPECT_EQ(folder_.read("docs/one.dita"), topic);
    const Texts reports{"--summary", "marrowpress-results/s.json",
                        "--sarif",   "s.sarif",
                        "--junit",   "j.xml",
                        "--report",  "own"};
    EXPECT_EQ(batch(reports).code, 0);
    EXPECT_EQ(batch(reports).code, 0) << "those of an earlier batch are replaced";
}

TEST_F(BatchTest, NoResultTakesThePlaceOfTheFileOfJobs) {
    writeTwoJobs();
    const std::string jobs = folder_.read("jobs.jsonl");
    folder_.write("one.json", jobs);
    const Texts here{"--catalog", "catalog.xml", "--results", "."};
    const auto refused = [&](Texts command) {
        command.insert(command.end(), here.begin(), here.end());
        const CommandResult ended = run(command);
        return ended.code == 2 && ended.err.find(
                                      "--results: the result of `one` would take the "
                                      "place of one.json") != std::string::npos;
    };
    EXPECT_TRUE(refused({"batch", "one.json"}));
    EXPECT_TRUE(refused({"batch", "check", "one.json"}));
    EXPECT_EQ(run({"batch", "emit", "ninja", "one.json", "--results", "."}).code, 2);
    EXPECT_EQ(folder_.read("one.json"), jobs);
    ASSERT_EQ(run({"batch", "plan", "jobs.jsonl", "--plan", "one.plan"}).code, 0);
    const std::string plan = folder_.read("one.plan");
    folder_.write("one.json", plan);
    EXPECT_EQ(run({"batch", "run", "one.json", "--index", "1", "--results", "."}).code, 2);
    EXPECT_EQ(folder_.read("one.json"), plan);
    EXPECT_FALSE(folder_.exists("out/one.dita")) << "nothing was started";
}

TEST_F(BatchTest, ResultsAndPagesWantAFolderBeforeAnythingIsStarted) {
    writeTwoJobs();
    folder_.write("file", "");
    for (const char* const option : {"--results", "--report"}) {
        for (const char* const place : {"file", "file/below"}) {
            const CommandResult refused = batch({option, place});
            EXPECT_EQ(refused.code, 2) << option;
            EXPECT_NE(refused.err.find(std::string("marrowpress batch: ") + option + ": "),
                      std::string::npos)
                << refused.err;
        }
    }
    folder_.write("jobs.jsonl", job("index", "docs/one.ditamap", "out/one.dita"));
    EXPECT_EQ(batch({"--report", "pages"}).code, 2) << "its page and the index are one file";
    EXPECT_FALSE(folder_.exists("marrowpress-results"));
    EXPECT_FALSE(folder_.exists("out/one.dita"));
    EXPECT_FALSE(folder_.exists("pages"));
}

TEST_F(BatchTest, APlanTakesThePlaceOfPlansAlone) {
    writeTwoJobs();
    const std::string jobs = folder_.read("jobs.jsonl");
    folder_.write("other.json", "{}");
    for (const char* const file :
         {"jobs.jsonl", "docs/one.ditamap", "docs/one.dita", "other.json"}) {
        EXPECT_EQ(run({"batch", "plan", "jobs.jsonl", "--plan", file}).code, 2) << file;
    }
    EXPECT_EQ(folder_.read("jobs.jsonl"), jobs);
    EXPECT_EQ(folder_.read("other.json"), "{}");
    ASSERT_EQ(run({"batch", "plan", "jobs.jsonl", "--plan", "p.jsonl"}).code, 0);
    EXPECT_EQ(run({"batch", "plan", "jobs.jsonl", "--select", "one", "--plan", "p.jsonl"}).code, 0);
    EXPECT_EQ(
        run({"batch", "merge", "marrowpress-results", "--plan", "p.jsonl", "--summary", "p.jsonl"})
            .code,
        2);
}

TEST_F(BatchTest, AProjectFileIsPublishedAsFarAsItIsOursAndCheckedAsAWhole) {
    folder_.write("project.xml", R"(<project xmlns="https://www.dita-ot.org/project">
<deliverable id="ours"><context><input href="docs/one.ditamap"/></context><output href="."/>
<publication transtype="composite"/></deliverable>
<deliverable id="site"><context><input href="docs/two.ditamap"/></context><output href="site"/>
<publication transtype="html5"/></deliverable></project>)");
    const Texts common{"project.xml", "--catalog", "catalog.xml", "--output", "out"};
    const auto call = [&](Texts command, const Texts& more = {}) {
        command.insert(command.end(), common.begin(), common.end());
        command.insert(command.end(), more.begin(), more.end());
        return run(command);
    };
    const CommandResult published = call({"batch"});
    EXPECT_EQ(published.code, 0) << published.err;
    EXPECT_NE(published.err.find("passed over, being of other transtypes: site (html5)."),
              std::string::npos)
        << published.err;
    EXPECT_EQ(namesIn("out"), Texts({"one.dita"}));
    EXPECT_NE(call({"batch", "check"}).out.find("2 jobs: 2 clean"), std::string::npos);
    EXPECT_EQ(call({"batch"}, {"--as", "html5=composite"}).code, 0);
    EXPECT_TRUE(folder_.exists("out/site/two.dita"));
    const CommandResult none = call({"batch"}, {"--select", "site"});
    EXPECT_EQ(none.code, 2) << "what is passed over cannot be selected";
    folder_.write("project.xml", R"(<project xmlns="https://www.dita-ot.org/project">
<deliverable id="site"><context><input href="docs/two.ditamap"/></context><output href="site"/>
<publication transtype="html5"/></deliverable></project>)");
    const CommandResult refused = call({"batch"});
    EXPECT_EQ(refused.code, 2);
    EXPECT_NE(refused.err.find("no deliverable has the transtype composite or flatbook: site"),
              std::string::npos)
        << refused.err;
}

TEST_F(BatchTest, WrongFilesOfJobsStartNothing) {
    const auto errorOf = [this](const std::string& text) {
        folder_.write("jobs.jsonl", text);
        const CommandResult result = batch();
        EXPECT_EQ(result.code, 2) << text;
        EXPECT_FALSE(folder_.exists("marrowpress-results")) << text;
        return result.err;
    };
    EXPECT_NE(errorOf("{\"id\":\"a\"}\n").find("jobs.jsonl:1: \"request\" is missing"),
              std::string::npos);
    EXPECT_NE(errorOf("\n{\"id\":\n").find("jobs.jsonl:3: this is not well-formed JSON"),
              std::string::npos);
    EXPECT_NE(errorOf("").find("there are no jobs"), std::string::npos);
    EXPECT_EQ(run({"batch", "none.jsonl"}).code, 2);
}

}  // namespace
}  // namespace marrowpress
