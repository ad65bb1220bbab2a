#include "results/result_json.h"

#include <gtest/gtest.h>

#include "tests/support/sample_findings.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

RunResult sampleResult() {
    RunResult result;
    result.id = "guide \"a\"";
    result.state = ResultState::kFailed;
    result.exit = 137;
    result.signal = 9;
    result.phase = "assembly";
    result.request = R"({"type":"PublishComp","params":{}})";
    result.options = R"({"command":"publish"})";
    result.versions = R"({"marrowpress":"0.1.0"})";
    result.findings = sampleFindings();
    result.topics = 4;
    result.dropped = 1;
    result.dependencies = {{"/w/m.ditamap", "map reference", "read", {}, "aa"},
                           {"/w/ä.dita", "topic", "absent", {"/w/m.ditamap", 2, 3}, std::nullopt}};
    result.outputs = {{"/w/out.dita", "bb"}};
    result.run.plan = "cc";
    result.run.started = "2026-01-31T12:00:00Z";
    result.run.seconds = 1.25;
    result.run.cpuSeconds = 0.5;
    result.run.memory = 1'000'000;
    result.run.tries = 2;
    result.run.isMemoryShort = true;
    result.run.begin = 1'700'000'000'123'456'789;
    result.run.end = 1'700'000'000'223'456'789;
    result.run.files = {KnownFile{{5, 1, 2, 3, 4}, "dd"}, std::nullopt,
                        KnownFile{{6, 7, 8, 9, 10}, "ee"}};
    result.run.reports = {{"/w/page.html", "ff"}};
    result.run.folder = "/w";
    result.run.places = {{"/w/a.qs", KnownFile{{1, 2, 3, 4, 5}, "00"}}, {"/w/b.qs", std::nullopt}};
    return result;
}

TEST(ResultJsonTest, WhatIsWrittenIsReadAsItWas) {
    const RunResult result = sampleResult();
    const RunResult read = parseResult(resultText(result));
    EXPECT_EQ(resultText(read), resultText(result));
    EXPECT_EQ(read.id, result.id);
    EXPECT_EQ(read.state, ResultState::kFailed);
    EXPECT_EQ(read.signal, 9);
    EXPECT_EQ(read.phase, "assembly");
    EXPECT_EQ(read.status, std::nullopt);
    EXPECT_EQ(read.findings.size(), result.findings.size());
    EXPECT_EQ(read.dependencies[1].from, (FindingPlace{"/w/m.ditamap", 2, 3}));
    EXPECT_EQ(read.dependencies[1].sha256, std::nullopt);
    EXPECT_EQ(read.run.files[0]->stamp, result.run.files[0]->stamp);
    EXPECT_EQ(read.run.begin, result.run.begin);
    EXPECT_TRUE(read.run.isMemoryShort);
    EXPECT_EQ(read.run.reports, result.run.reports);
    EXPECT_EQ(read.run.folder, "/w");
    ASSERT_EQ(read.run.places.size(), 2U);
    EXPECT_EQ(read.run.places.at("/w/a.qs")->xxh128, "00");
    EXPECT_FALSE(read.run.places.at("/w/b.qs"));
}

TEST(ResultJsonTest, AllThatMayDifferIsInTheLastMember) {
    RunResult other = sampleResult();
    other.run = ResultRun();
    other.run.files.resize(3);
    const std::string text = resultText(sampleResult());
    const std::size_t run = text.find("\n\"run\":{");
    ASSERT_NE(run, std::string::npos);
    EXPECT_EQ(resultText(other).substr(0, run), text.substr(0, run));
    EXPECT_TRUE(text.ends_with("]}}\n")) << text;
}

TEST(ResultJsonTest, WhatIsCutOffForeignOrNewerIsNoResult) {
    const std::string text = resultText(sampleResult());
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, text.size() / 2, text.size() - 2}) {
        EXPECT_THROW(parseResult(text.substr(0, length)), ResultError) << length;
    }
    EXPECT_THROW(parseResult("[]"), ResultError);
    EXPECT_THROW(parseResult("{}"), ResultError);
    std::string newer = text;
    newer.replace(newer.find("\"format\":1"), 10, "\"format\":2");
    try {
        parseResult(newer);
        FAIL() << "it was read";
    } catch (const ResultError& error) {
        EXPECT_STREQ(error.what(), "it is of a newer version");
    }
}

TEST(ResultJsonTest, AMemberOfAnotherKindIsNamed) {
    const std::string text = resultText(sampleResult());
    const auto faultOf = [&text](const std::string& member, const std::string& instead) {
        std::string changed = text;
        changed.replace(changed.find(member), member.size(), instead);
        try {
            parseResult(changed);
        } catch (const ResultError& error) {
            return std::string(error.what());
        }
        return std::string("none");
    };
    EXPECT_EQ(faultOf("\"exit\":137", "\"exit\":\"x\""), "\"exit\" is no such number");
    for (const char* const seconds : {"-1", "1e38", "\"1\""}) {
        EXPECT_EQ(faultOf("\"seconds\":1.250", std::string("\"seconds\":") + seconds),
                  "\"seconds\" is no such number")
            << seconds;
    }
    EXPECT_EQ(faultOf("\"phase\":\"assembly\"", "\"phase\":1"), "\"phase\" is no string");
    EXPECT_EQ(faultOf("\"state\":\"failed\"", "\"state\":\"odd\""),
              "\"state\" is none of clean, findings and failed");
    EXPECT_EQ(faultOf("[5,1,2,3,4,\"dd\"]", "[5]"), "\"files\" is no array of stamps");
    EXPECT_EQ(faultOf("[5,1,2,3,4,\"dd\"],\n", ""), "\"files\" are not those of the run");
    EXPECT_EQ(faultOf("\"topics\":4,", ""), "\"topics\" is missing");
}

TEST(ResultJsonTest, AFileThatIsNotThereIsNone) {
    const TemporaryFolder folder;
    EXPECT_THROW(readResult(folder.file("none.json")), ResultError);
    EXPECT_EQ(readResult(folder.write("r.json", resultText(sampleResult()))).id, sampleResult().id);
}

}  // namespace
}  // namespace marrowpress
