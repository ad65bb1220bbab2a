#include "cli/findings_report.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/chosen_language.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

Finding findingOf(const std::string& id, Severity severity, const std::string& file) {
    Finding finding;
    finding.id = id;
    finding.severity = severity;
    finding.text = "text";
    finding.place = {file, 0, 0};
    finding.target = "target";
    return finding;
}

class FindingsReportTest : public testing::Test {
protected:
    FindingsReportTest() { options.format = DiagnosticsFormat::kShort; }

    /// The exit code of a run with the findings; what it shows is in `err`.
    int exitOf(const std::vector<Finding>& findings, ExitCode code = ExitCode::kSuccess,
               std::size_t droppedFaults = 0) {
        FindingList list;
        for (const Finding& finding : findings) {
            list.add(finding);
        }
        const FindingsReport report(options, folder.file("m.ditamap"), folder.path().string());
        EXPECT_EQ(report.fault(), std::nullopt);
        std::ostringstream out;
        const ExitCode exit = report.write(list, droppedFaults, 7, code, out);
        err = out.str();
        return static_cast<int>(exit);
    }

    Finding finding(const std::string& id, Severity severity) const {
        return findingOf(id, severity, folder.file("a.dita"));
    }

    TemporaryFolder folder;
    ChosenLanguage english{Language::kEnglish};
    DiagnosticsOptions options;
    std::string err;
};

TEST_F(FindingsReportTest, FaultsThatTheRunCouldNotKeepAreNoCleanRun) {
    EXPECT_EQ(exitOf({}, ExitCode::kSuccess, 1), 3);
    options.failOn = FailOn::kNever;
    EXPECT_EQ(exitOf({}, ExitCode::kSuccess, 1), 0);
}

TEST_F(FindingsReportTest, TheLevelDecidesWhichSeverityTurnsTheExitCode) {
    const struct {
        FailOn failOn;
        int error;
        int warning;
        int note;
    } cases[] = {{FailOn::kError, 3, 0, 0}, {FailOn::kWarning, 3, 3, 0}, {FailOn::kNever, 0, 0, 0}};
    for (const auto& expected : cases) {
        options.failOn = expected.failOn;
        EXPECT_EQ(exitOf({finding("MP105", Severity::kError)}), expected.error);
        EXPECT_EQ(exitOf({finding("MP105", Severity::kWarning)}), expected.warning);
        EXPECT_EQ(exitOf({finding("MP105", Severity::kNote)}), expected.note);
        EXPECT_EQ(exitOf({}), 0);
    }
}

TEST_F(FindingsReportTest, ARunThatFailedStaysFailed) {
    options.failOn = FailOn::kNever;
    EXPECT_EQ(exitOf({}, ExitCode::kRunFailed), 1);
    options.failOn = FailOn::kError;
    EXPECT_EQ(exitOf({finding("MP105", Severity::kError)}, ExitCode::kRunFailed), 1);
}

TEST_F(FindingsReportTest, ArtefactsNeverCountAndAreShownOnRequestOnly) {
    Finding artefact = finding("MP105", Severity::kError);
    artefact.isArtefact = true;
    EXPECT_EQ(exitOf({artefact}), 0);
    EXPECT_EQ(err.find("MP105"), std::string::npos) << err;
    options.showsAll = true;
    EXPECT_EQ(exitOf({artefact}), 0);
    EXPECT_NE(err.find("MP105"), std::string::npos) << err;
}

TEST_F(FindingsReportTest, WhatTheBaselineKnowsDoesNotCount) {
    const Finding known = finding("MP105", Severity::kError);
    const Finding fresh = finding("MP203", Severity::kError);
    options.format = DiagnosticsFormat::kJson;
    EXPECT_EQ(exitOf({known}), 3);
    options.baseline = folder.write("old.jsonl", err);
    EXPECT_EQ(exitOf({known}), 0);
    EXPECT_EQ(err.find("MP105"), std::string::npos) << err;
    EXPECT_EQ(exitOf({known, fresh}), 3);
    EXPECT_NE(err.find("MP203"), std::string::npos) << err;
}

TEST_F(FindingsReportTest, ABaselineThatIsNoneIsAFault) {
    const auto faultOf = [this](const std::string& path) {
        options.baseline = path;
        return FindingsReport(options, "/m.ditamap", "/").fault().value_or("");
    };
    EXPECT_EQ(faultOf(folder.file("none")), "--baseline: cannot read " + folder.file("none"));
    const std::string text = folder.write("old.txt", "text\n");
    EXPECT_TRUE(faultOf(text).starts_with("--baseline: " + text + ": ")) << faultOf(text);
}

TEST_F(FindingsReportTest, FilesTakeThePlaceOfStandardErrorOrAreWrittenToo) {
    options.format = DiagnosticsFormat::kJson;
    options.file = folder.file("f.jsonl");
    options.sarif = folder.file("f.sarif");
    options.junit = folder.file("f.xml");
    EXPECT_EQ(exitOf({finding("MP105", Severity::kError)}), 3);
    EXPECT_EQ(err, "");
    for (const char* const name : {"f.jsonl", "f.sarif", "f.xml"}) {
        EXPECT_NE(folder.read(name).find("MP105"), std::string::npos) << name;
    }
    EXPECT_NE(folder.read("f.jsonl").find(R"("topics":7,)"), std::string::npos);
    EXPECT_NE(folder.read("f.jsonl").find(R"("exit":3)"), std::string::npos);
}

TEST_F(FindingsReportTest, NamesTheFilesThatItWrites) {
    options.sarif = "s";
    options.file = "d";
    const std::vector<NamedPath> files = FindingsReport(options, "/m.ditamap", "/").files();
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files[0].argument, "--diagnostics-file");
    EXPECT_EQ(files[1].argument, "--sarif");
}

TEST_F(FindingsReportTest, AFileThatCannotBeWrittenIsAFailureAndAFinding) {
    options.format = DiagnosticsFormat::kJson;
    options.sarif = "/dev/full";
    EXPECT_EQ(exitOf({}), 1);
    EXPECT_NE(err.find("`/dev/full` cannot be written: No space left on device"), std::string::npos)
        << err;
    EXPECT_NE(err.find(R"("exit":1)"), std::string::npos) << err;
}

TEST_F(FindingsReportTest, FindingsThatCannotBeWrittenAreAFailure) {
    options.file = "/dev/full";
    EXPECT_EQ(exitOf({finding("MP105", Severity::kError)}), 1);
    EXPECT_EQ(err, "marrowpress: cannot write /dev/full: No space left on device\n");
}

}  // namespace
}  // namespace marrowpress
