#include "findings/junit_writer.h"

#include <gtest/gtest.h>

#include <libxml/parser.h>

#include <sstream>

#include "host/utf8.h"
#include "tests/support/golden_text.h"
#include "tests/support/sample_findings.h"

namespace marrowpress {
namespace {

const std::string kReportStart = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n ";
const std::string kReportEnd = " </testsuite>\n</testsuites>\n";

std::string writtenJunit(const std::vector<Finding>& findings, const FindingSummary& summary) {
    std::ostringstream out;
    writeJunit(out, findings, summary,
               {std::string(kSampleFolder) + "/root.ditamap", std::string(kSampleFolder), {}});
    return out.str();
}

Finding findingOfSeverity(Severity severity, FindingPlace place) {
    Finding result;
    result.id = "MP105";
    result.severity = severity;
    result.text = "text";
    result.place = std::move(place);
    return result;
}

TEST(JunitWriterTest, WritesAllFormsOfFindings) {
    const std::string report = writtenJunit(sampleFindings(), sampleSummary());
    EXPECT_EQ(report, goldenText("junit.xml", report));
    EXPECT_TRUE(isValidUtf8(report));
}

TEST(JunitWriterTest, IsWellFormedWhateverTheNamesAre) {
    const std::string report = writtenJunit(sampleFindings(), sampleSummary());
    xmlDoc* const read = xmlReadMemory(report.data(), static_cast<int>(report.size()), nullptr,
                                       nullptr, XML_PARSE_NONET);
    EXPECT_NE(read, nullptr);
    xmlFreeDoc(read);
}

TEST(JunitWriterTest, WithoutFindingsTheMapPasses) {
    FindingSummary summary;
    summary.seconds = 1.84;
    EXPECT_EQ(writtenJunit({}, summary),
              kReportStart +
                  "<testsuite name=\"marrowpress\" tests=\"1\" failures=\"0\" errors=\"0\" "
                  "time=\"1.840\">\n"
                  "  <testcase name=\"root.ditamap\" classname=\"marrowpress\" time=\"0.000\"/>\n" +
                  kReportEnd);
}

TEST(JunitWriterTest, AFileFailsOnceForAllItsErrors) {
    Finding first = findingOfSeverity(Severity::kError, {"/guide/a.dita", 9, 3});
    first.hint = "hint";
    const std::string report =
        writtenJunit({first, findingOfSeverity(Severity::kWarning, {"/guide/a.dita", 10, 1}),
                      findingOfSeverity(Severity::kError, {"/guide/a.dita", 11, 1})},
                     {});
    EXPECT_EQ(report, kReportStart +
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
                          kReportEnd);
}

TEST(JunitWriterTest, WarningsAndNotesFailNothing) {
    const std::string report =
        writtenJunit({findingOfSeverity(Severity::kWarning, {"/guide/a.dita", 1, 1}),
                      findingOfSeverity(Severity::kNote, {"/guide/b.dita", 1, 1})},
                     {});
    EXPECT_NE(report.find("tests=\"2\" failures=\"0\""), std::string::npos);
    EXPECT_EQ(report.find("<failure"), std::string::npos);
}

TEST(JunitWriterTest, WhatHasNoFileIsTheMaps) {
    const std::string report =
        writtenJunit({findingOfSeverity(Severity::kError, {}),
                      findingOfSeverity(Severity::kError, {"/guide/root.ditamap", 1, 1})},
                     {});
    EXPECT_NE(report.find("tests=\"1\" failures=\"1\""), std::string::npos);
    EXPECT_NE(report.find("testcase name=\"root.ditamap\""), std::string::npos);
}

TEST(JunitWriterTest, AnArtefactIsNothing) {
    Finding artefact = findingOfSeverity(Severity::kError, {"/guide/a.dita", 1, 1});
    artefact.isArtefact = true;
    EXPECT_EQ(writtenJunit({artefact}, {}), writtenJunit({}, {}));
}

TEST(JunitWriterTest, AFailedRunIsNeverAllGreen) {
    FindingSummary summary;
    summary.exit = 1;
    const std::string report =
        writtenJunit({findingOfSeverity(Severity::kWarning, {"/guide/a.dita", 1, 1})}, summary);
    EXPECT_NE(report.find("tests=\"2\" failures=\"0\" errors=\"1\""), std::string::npos);
    EXPECT_NE(report.find("<error message=\"exit 1\"/>"), std::string::npos);
    const std::string withError =
        writtenJunit({findingOfSeverity(Severity::kError, {"/guide/a.dita", 1, 1})}, summary);
    EXPECT_NE(withError.find("tests=\"1\" failures=\"1\" errors=\"0\""), std::string::npos);
    EXPECT_EQ(withError.find("<error"), std::string::npos);
}

}  // namespace
}  // namespace marrowpress
