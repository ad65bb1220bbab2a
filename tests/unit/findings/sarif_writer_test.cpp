#include "findings/sarif_writer.h"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>
#include <sstream>

#include "host/utf8.h"
#include "tests/support/golden_text.h"
#include "tests/support/sample_findings.h"

namespace marrowpress {
namespace {

std::string titleOf(std::string_view id) {
    return "Title of " + std::string(id);
}

std::string writtenSarif(const std::vector<Finding>& findings, const FindingSummary& summary) {
    std::ostringstream out;
    writeSarif(out, findings, summary, {"0.1.0", std::string(kSampleFolder), titleOf});
    return out.str();
}

/// The value at `pointer` of the log's only run.
std::string valueAt(const std::string& log, const std::string& pointer) {
    boost::json::error_code error;
    const boost::json::value whole = boost::json::parse(log);
    const boost::json::value* const value = whole.find_pointer("/runs/0" + pointer, error);
    return value == nullptr ? "(none)" : boost::json::serialize(*value);
}

Finding findingAt(FindingPlace place) {
    Finding result;
    result.id = "MP105";
    result.text = "text";
    result.place = std::move(place);
    return result;
}

TEST(SarifWriterTest, WritesAllFormsOfFindings) {
    const std::string log = writtenSarif(sampleFindings(), sampleSummary());
    EXPECT_EQ(log, goldenText("findings.sarif", log));
    EXPECT_TRUE(isValidUtf8(log));
}

TEST(SarifWriterTest, ARunWithoutFindingsIsALogToo) {
    const std::string log = writtenSarif({}, {});
    EXPECT_EQ(valueAt(log, "/results"), "[]");
    EXPECT_EQ(valueAt(log, "/tool/driver"),
              R"({"name":"Marrowpress","version":"0.1.0","rules":[]})");
    EXPECT_EQ(valueAt(log, "/originalUriBaseIds/SRCROOT/uri"), "\"file:///guide/\"");
    EXPECT_EQ(valueAt(log, "/columnKind"), "\"utf16CodeUnits\"");
}

TEST(SarifWriterTest, OnlyAFailedRunIsUnsuccessful) {
    FindingSummary summary;
    for (const int exit : {0, 1, 3}) {
        summary.exit = exit;
        EXPECT_EQ(valueAt(writtenSarif({}, summary), "/invocations/0"),
                  R"({"executionSuccessful":)" + std::string(exit == 1 ? "false" : "true") +
                      R"(,"exitCode":)" + std::to_string(exit) + '}');
    }
}

TEST(SarifWriterTest, RulesAreTheIdsThatAreUsed) {
    Finding other = findingAt({});
    other.id = "MP201";
    Finding artefact = findingAt({});
    artefact.id = "MP106";
    artefact.isArtefact = true;
    const std::string log = writtenSarif({other, artefact, findingAt({}), other}, {});
    EXPECT_EQ(valueAt(log, "/tool/driver/rules"),
              R"([{"id":"MP105","shortDescription":{"text":"Title of MP105"}},)"
              R"({"id":"MP201","shortDescription":{"text":"Title of MP201"}}])");
    EXPECT_EQ(valueAt(log, "/results/0/ruleIndex"), "1");
    EXPECT_EQ(valueAt(log, "/results/1/ruleIndex"), "0");
    EXPECT_EQ(valueAt(log, "/results/2/ruleIndex"), "1");
    EXPECT_EQ(valueAt(log, "/results/3"), "(none)");
}

TEST(SarifWriterTest, AFileBelowTheCurrentFolderIsRelative) {
    const std::string log = writtenSarif(
        {findingAt({"/guide/a b/c:d.dita", 9, 3}), findingAt({"/guide2/a b.dita", 9, 3})}, {});
    const std::string at = "/locations/0/physicalLocation/artifactLocation";
    EXPECT_EQ(valueAt(log, "/results/0" + at),
              R"({"uri":"a%20b/c%3Ad.dita","uriBaseId":"SRCROOT"})");
    EXPECT_EQ(valueAt(log, "/results/1" + at), R"({"uri":"file:///guide2/a%20b.dita"})");
}

TEST(SarifWriterTest, LeavesOutWhatIsNotKnown) {
    const std::string log = writtenSarif(
        {findingAt({"/guide/a.dita", 9, 0}), findingAt({"/guide/a.dita", 0, 0}), findingAt({})},
        {});
    EXPECT_EQ(valueAt(log, "/results/0/locations/0/physicalLocation/region"), R"({"startLine":9})");
    EXPECT_EQ(valueAt(log, "/results/1/locations/0/physicalLocation/region"), "(none)");
    EXPECT_EQ(valueAt(log, "/results/2/locations"), "(none)");
    EXPECT_EQ(valueAt(log, "/results/2/relatedLocations"), "(none)");
}

TEST(SarifWriterTest, TheWayAndFurtherPlacesAreRelated) {
    Finding some = findingAt({"/guide/a.dita", 9, 3});
    some.via = {{{"/guide/root.ditamap", 7, 20}, "href a.dita"}, {{}, "nowhere"}};
    some.places = {{"/guide/b.dita", 1, 2}};
    const std::string log = writtenSarif({some}, {});
    EXPECT_EQ(valueAt(log, "/results/0/relatedLocations"),
              R"([{"physicalLocation":{"artifactLocation":{"uri":"root.ditamap",)"
              R"("uriBaseId":"SRCROOT"},"region":{"startLine":7,"startColumn":20}},)"
              R"("message":{"text":"href a.dita"}},)"
              R"({"physicalLocation":{"artifactLocation":{"uri":"b.dita",)"
              R"("uriBaseId":"SRCROOT"},"region":{"startLine":1,"startColumn":2}}}])");
}

TEST(SarifWriterTest, AFingerprintOutlivesAMoveOfTheLine) {
    const std::string log =
        writtenSarif({findingAt({"/guide/a.dita", 9, 3}), findingAt({"/guide/a.dita", 10, 1})}, {});
    const std::string at = "/partialFingerprints/marrowpress~1v1";
    EXPECT_NE(valueAt(log, "/results/0" + at), "(none)");
    EXPECT_EQ(valueAt(log, "/results/0" + at), valueAt(log, "/results/1" + at));
}

TEST(SarifWriterTest, TheMessageHasTheHint) {
    Finding some = findingAt({});
    some.hint = "did you mean `x`?";
    EXPECT_EQ(valueAt(writtenSarif({some}, {}), "/results/0/message/text"),
              "\"text (did you mean `x`?)\"");
}

TEST(SarifWriterTest, SaysWhenNotAllWereKept) {
    FindingSummary summary;
    summary.dropped = 12;
    EXPECT_EQ(valueAt(writtenSarif({}, summary), "/properties/dropped"), "12");
    EXPECT_EQ(valueAt(writtenSarif({}, {}), "/properties"), "(none)");
}

}  // namespace
}  // namespace marrowpress
