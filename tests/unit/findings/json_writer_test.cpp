#include "findings/json_writer.h"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <sstream>

#include "host/utf8.h"
#include "tests/support/golden_text.h"
#include "tests/support/sample_findings.h"

namespace marrowpress {
namespace {

std::string writtenJson(const std::vector<Finding>& findings, const FindingSummary& summary) {
    std::ostringstream out;
    writeJson(out, findings, summary);
    return out.str();
}

TEST(JsonWriterTest, WritesAllFormsOfFindings) {
    const std::string text = writtenJson(sampleFindings(), sampleSummary());
    EXPECT_EQ(text, goldenText("findings.jsonl", text));
    EXPECT_TRUE(isValidUtf8(text));
}

TEST(JsonWriterTest, EachLineIsAnObject) {
    std::istringstream in(writtenJson(sampleFindings(), sampleSummary()));
    std::size_t lines = 0;
    for (std::string line; std::getline(in, line);) {
        EXPECT_TRUE(boost::json::parse(line).is_object());
        ++lines;
    }
    EXPECT_EQ(lines, sampleFindings().size() + 1);
}

TEST(JsonWriterTest, WhatIsNotKnownIsNull) {
    Finding finding;
    finding.id = "MP107";
    const std::string text = writtenJson({finding}, {});
    EXPECT_EQ(text.substr(0, text.find('\n')),
              R"({"id":"MP107","severity":"error","text":"","file":null,"line":null,"column":null,)"
              R"("element":null,"target":null,"hint":null,"via":[],"places":[],"profile":[],)"
              R"("artefact":false,"hostText":null})");
}

TEST(JsonWriterTest, AnEmptyHostTextIsNotNull) {
    Finding finding;
    finding.id = "MP107";
    finding.hostText = "";
    EXPECT_NE(writtenJson({finding}, {}).find(R"("hostText":"")"), std::string::npos);
}

TEST(JsonWriterTest, TheSummaryIsTheLastLine) {
    EXPECT_EQ(writtenJson({}, {2, 5, 1, 412, 3, 1.84, 3, 0}),
              R"({"summary":{"errors":2,"warnings":5,"notes":1,"topics":412,"files":3,)"
              R"("seconds":1.840,"exit":3}})"
              "\n");
}

TEST(JsonWriterTest, TheSummarySaysWhenNotAllWereKept) {
    FindingSummary summary;
    summary.dropped = 12;
    EXPECT_NE(writtenJson({}, summary).find(R"("dropped":12}})"), std::string::npos);
}

}  // namespace
}  // namespace marrowpress
