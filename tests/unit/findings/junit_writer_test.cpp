#include "findings/junit_writer.h"

#include <gtest/gtest.h>

#include <libxml/parser.h>

#include <sstream>

#include "host/utf8.h"
#include "tests/support/golden_text.h"
#include "tests/support/sample_findings.h"

namespace marrowpress {
namespace {

const std::string kStart = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n ";
const std::string kEnd = " </testsuite>\n</testsuites>\n";

std::string written(const std::vector<Finding>& findings, const FindingSummary& summary) {
    std::ostringstream out;
    writeJunit(out, findings, summary,
               {std::string(kSampleFolder) + "/root.ditamap", std::string(kSampleFolder), {}});
    return out.str();
}

Finding finding(Severity severity, FindingPlace place) {
    Finding result;
    result.id = "MP105";
    result.severity = severity;
    result.text = "text";
    result.place = std::move(place);
    return result;
}

TEST(JunitWriterTest, WritesAllFormsOfFindings) {
    const std::string report = written(sampleFindings(), sampleSummary());
    EXPECT_EQ(report, goldenText("junit.xml", report));
    EXPECT_TRUE(isValidUtf8(report));
}

TEST(JunitWriterTest, IsWellFormedWhateverTheNamesAre) {
    const std::string report = written(sampleFindings(), sampleSummary());
    xmlDoc* const read = xmlReadMemory(report.data(), static_cast<int>(report.size()), nullptr,
                                       nullptr, XML_PARSE_NONET);
    EXPECT_NE(read, nullptr);
    xmlFreeDoc(read);
}

TEST(JunitWriterTest, WithoutFindingsTheMapPasses) {
    FindingSummary summary;
    summary.seconds = 1.84;
    EXPECT_EQ(written({}, summary),
              kStart +
                  "<testsuite name=\"marrowpress\" tests=\"1\" failures=\"0\" errors=\"0\" "
                  "time=\"1.840\">\n"
                  "  <testcase name=\"root.ditamap\" classname=\"marrowpress\" time=\"0.000\"/>\n" +
                  kEnd);
}

TEST(JunitWriterTest, AFileFailsOnceForAllItsErrors) {
    Finding first = finding(Severity::kError, {"/guide/a.dita", 9, 3});
    first.hint = "hint";
    const std::string report =
        written({first, finding(Severity::kWarning, {"/guide/a.dita", 10, 1}),
                 finding(Severity::kError, {"/guide/a.dita", 11, 1})},
                {});
    EXPECT_EQ(report, kStart +
                          "<testsuite name=\"marrowpress\" tests=\"1\" failures=\"1\" errors=\"0\" "
                          "time=\"0.000\">\n"
                          "  <testcase name=\"a.dita\" classname=\"marrowpress\" time=\"0.000\">\n"
                          "   <failure message=\"text (hint)\" type=\"MP105\">"
                          "a.dita:9:3: error: text [MP105]\n"
                          "  hint: hint\n"
                          "a.dita:11:1: error: text [MP105]\n"
                          "</failure>\n"
                          "   <system-out>a.dita:10:1: warning: text [MP105]\n"
                          "</system-out>\n"
                          "  </testcase>\n" +
                          kEnd);
}

TEST(JunitWriterTest, WarningsAndNotesFailNothing) {
    const std::string report = written({finding(Severity::kWarning, {"/guide/a.dita", 1, 1}),
                                        finding(Severity::kNote, {"/guide/b.dita", 1, 1})},
                                       {});
    EXPECT_NE(report.find("tests=\"2\" failures=\"0\""), std::string::npos);
    EXPECT_EQ(report.find("<failure"), std::string::npos);
}

TEST(JunitWriterTest, WhatHasNoFileIsTheMaps) {
    const std::string report = written(
        {finding(Severity::kError, {}), finding(Severity::kError, {"/guide/root.ditamap", 1, 1})},
        {});
    EXPECT_NE(report.find("tests=\"1\" failures=\"1\""), std::string::npos);
    EXPECT_NE(report.find("testcase name=\"root.ditamap\""), std::string::npos);
}

TEST(JunitWriterTest, AnArtefactIsNothing) {
    Finding artefact = finding(Severity::kError, {"/guide/a.dita", 1, 1});
    artefact.isArtefact = true;
    EXPECT_EQ(written({artefact}, {}), written({}, {}));
}

TEST(JunitWriterTest, AFailedRunIsNeverAllGreen) {
    FindingSummary summary;
    summary.exit = 1;
    const std::string report =
        written({finding(Severity::kWarning, {"/guide/a.dita", 1, 1})}, summary);
    EXPECT_NE(report.find("tests=\"2\" failures=\"0\" errors=\"1\""), std::string::npos);
    EXPECT_NE(report.find("<error message=\"exit 1\"/>"), std::string::npos);
    const std::string withError =
        written({finding(Severity::kError, {"/guide/a.dita", 1, 1})}, summary);
    EXPECT_NE(withError.find("tests=\"1\" failures=\"1\" errors=\"0\""), std::string::npos);
    EXPECT_EQ(withError.find("<error"), std::string::npos);
}

}  // namespace
}  // namespace marrowpress
