#include "findings/json_reader.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "findings/json_writer.h"
#include "host/utf8.h"
#include "tests/support/sample_findings.h"

namespace marrowpress {
namespace {

struct Recorded {
    std::vector<Finding> findings;
    std::optional<FindingSummary> summary;
};

Recorded readRecorded(const std::string& text) {
    std::istringstream in(text);
    Recorded recorded;
    recorded.summary = readJson(
        in, [&recorded](Finding finding) { recorded.findings.push_back(std::move(finding)); });
    return recorded;
}

std::string jsonFaultOf(const std::string& text) {
    try {
        readRecorded(text);
        return "(none)";
    } catch (const std::runtime_error& fault) {
        return fault.what();
    }
}

TEST(JsonReaderTest, GivesBackWhatWasWritten) {
    std::ostringstream first;
    writeJson(first, sampleFindings(), sampleSummary());
    const std::string text = first.str();
    const Recorded recorded = readRecorded(text);
    ASSERT_TRUE(recorded.summary);
    std::ostringstream second;
    writeJson(second, recorded.findings, *recorded.summary);
    EXPECT_EQ(second.str(), text);
}

TEST(JsonReaderTest, TakesAllMembers) {
    const Recorded recorded = readRecorded(
        R"({"id":"MP105","severity":"note","text":"t","file":"/a","line":1,"column":2,)"
        R"("element":"e","target":"k","hint":"h","via":[{"file":"/b","line":3,"column":4,)"
        R"("what":"w"}],"places":[{"file":"/c","line":5,"column":null}],"profile":["/d"],)"
        R"("artefact":true,"hostText":""})"
        "\n"
        R"({"summary":{"errors":1,"warnings":2,"notes":3,"topics":4,"files":5,"seconds":6.5,)"
        R"("exit":7,"dropped":8}})");
    ASSERT_EQ(recorded.findings.size(), 1U);
    const Finding& finding = recorded.findings[0];
    EXPECT_EQ(finding.id, "MP105");
    EXPECT_EQ(finding.severity, Severity::kNote);
    EXPECT_EQ(finding.text, "t");
    EXPECT_EQ(finding.place, (FindingPlace{"/a", 1, 2}));
    EXPECT_EQ(finding.element, "e");
    EXPECT_EQ(finding.target, "k");
    EXPECT_EQ(finding.hint, "h");
    EXPECT_EQ(finding.via, (std::vector<FindingStep>{{{"/b", 3, 4}, "w"}}));
    EXPECT_EQ(finding.places, (std::vector<FindingPlace>{{"/c", 5, 0}}));
    EXPECT_EQ(finding.profiles, std::vector<std::string>{"/d"});
    EXPECT_TRUE(finding.isArtefact);
    EXPECT_EQ(finding.hostText, "");
    ASSERT_TRUE(recorded.summary);
    const FindingSummary& summary = *recorded.summary;
    EXPECT_EQ(summary.errors, 1U);
    EXPECT_EQ(summary.warnings, 2U);
    EXPECT_EQ(summary.notes, 3U);
    EXPECT_EQ(summary.topics, 4U);
    EXPECT_EQ(summary.files, 5U);
    EXPECT_EQ(summary.seconds, 6.5);
    EXPECT_EQ(summary.exit, 7);
    EXPECT_EQ(summary.dropped, 8U);
}

TEST(JsonReaderTest, PassesOverWhatItDoesNotKnow) {
    const Recorded recorded = readRecorded(
        "\r\n  \n"
        R"({"id":"MP300","severity":"error","colour":{"deep":[1,2]},"line":null})"
        "\r\n"
        R"({"summary":{"weather":"fine"},"more":1})");
    ASSERT_EQ(recorded.findings.size(), 1U);
    EXPECT_EQ(recorded.findings[0].id, "MP300");
    EXPECT_TRUE(recorded.summary);
}

TEST(JsonReaderTest, AnEmptyFileHasNoFindings) {
    EXPECT_TRUE(readRecorded("").findings.empty());
    EXPECT_FALSE(readRecorded("\n").summary);
}

TEST(JsonReaderTest, NamesTheLineThatIsWrong) {
    const std::string good = R"({"id":"MP105","severity":"error"})"
                             "\n\n";
    EXPECT_EQ(jsonFaultOf(good + "{\"id\":"), "line 3: this is no JSON");
    struct Case {
        const char* line;
        const char* fault;
    };
    const Case cases[] = {
        {"nonsense", "this is no JSON"},
        {"{} {}", "this is no JSON"},
        {"\xEF\xBB\xBF{}", "this is no JSON"},
        {"{\"id\":\"\xFC\"}", "this is no JSON"},
        {"[]", "this is no JSON object"},
        {"7", "this is no JSON object"},
        {"{}", "\"id\" is missing"},
        {R"({"id":7,"severity":"error"})", "\"id\" is no string"},
        {R"({"id":"MP105"})", "\"severity\" is missing"},
        {R"({"id":"MP105","severity":"fatal"})", "\"severity\" is none of error, warning and note"},
        {R"({"id":"MP105","severity":"error","line":-1})", "\"line\" is no such number"},
        {R"({"id":"MP105","severity":"error","line":"1"})", "\"line\" is no such number"},
        {R"({"id":"MP105","severity":"error","line":4294967296})", "\"line\" is no such number"},
        {R"({"id":"MP105","severity":"error","places":{}})", "\"places\" is no array"},
        {R"({"id":"MP105","severity":"error","places":["/a"]})",
         "\"places\" is no array of objects"},
        {R"({"id":"MP105","severity":"error","via":[{"what":1}]})", "\"what\" is no string"},
        {R"({"id":"MP105","severity":"error","profile":[1]})",
         "\"profile\" is no array of strings"},
        {R"({"id":"MP105","severity":"error","artefact":0})",
         "\"artefact\" is neither true nor false"},
        {R"({"summary":[]})", "\"summary\" is no object"},
        {R"({"summary":{"errors":-1}})", "\"errors\" is no such number"},
    };
    for (const Case& sample : cases) {
        EXPECT_EQ(jsonFaultOf(good + sample.line), std::string("line 3: ") + sample.fault);
    }
}

TEST(JsonReaderTest, DeepNestingIsAFaultAndNoCrash) {
    EXPECT_EQ(jsonFaultOf(std::string(1'000'000, '[')), "line 1: this is no JSON");
}

}  // namespace
}  // namespace marrowpress
