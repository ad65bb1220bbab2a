#include "findings/github_writer.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/golden_text.h"
#include "tests/support/sample_findings.h"

namespace marrowpress {
namespace {

TEST(GithubWriterTest, WritesAllFormsOfFindings) {
    std::ostringstream out;
    writeGithub(out, sampleFindings(), kSampleFolder);
    EXPECT_EQ(out.str(), goldenText("github.txt", out.str()));
}

TEST(GithubWriterTest, EscapesWhatWouldEndAPropertyOrTheCommand) {
    Finding finding;
    finding.id = "MP105";
    finding.severity = Severity::kNote;
    finding.text = "50%\r\n::error::a, b: c";
    finding.place = {"/guide/a:b,c%d\n.dita", 2, 7};
    std::ostringstream out;
    writeGithub(out, {finding}, "/guide");
    EXPECT_EQ(out.str(),
              "::notice file=a%3Ab%2Cc%25d%0A.dita,line=2,col=7,title=MP105::"
              "50%25%0D%0A::error::a, b: c\n");
}

TEST(GithubWriterTest, LeavesOutWhatIsNotKnown) {
    Finding finding;
    finding.id = "MP107";
    finding.text = "text";
    finding.hint = "hint";
    std::ostringstream out;
    writeGithub(out, {finding}, "/guide");
    EXPECT_EQ(out.str(), "::error title=MP107::text (hint)\n");
}

TEST(GithubWriterTest, AnArtefactIsNoAnnotation) {
    Finding finding;
    finding.isArtefact = true;
    std::ostringstream out;
    writeGithub(out, {finding}, "/guide");
    EXPECT_EQ(out.str(), "");
}

}  // namespace
}  // namespace marrowpress
