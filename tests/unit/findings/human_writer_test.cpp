#include "findings/human_writer.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/golden_text.h"
#include "tests/support/sample_findings.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class HumanWriterTest : public testing::Test {
protected:
    HumanWriterTest() {
        options_.currentFolder = folder_.path().string();
        finding_.id = "MP105";
        finding_.text = "text";
    }

    /// What is written about the finding.
    std::string written() const {
        std::ostringstream out;
        writeHuman(out, {finding_}, {}, options_);
        const std::string text = out.str();
        const std::string end = "0 errors, 0 warnings; 0 topics, 0.0 s\n";
        EXPECT_TRUE(text.ends_with(end)) << text;
        return text.substr(0, text.size() - end.size());
    }

    TemporaryFolder folder_;
    HumanOptions options_;
    Finding finding_;
};

TEST_F(HumanWriterTest, WritesAllFormsOfFindings) {
    options_.currentFolder = kSampleFolder;
    std::ostringstream out;
    writeHuman(out, sampleFindings(), sampleSummary(), options_);
    EXPECT_EQ(out.str(), goldenText("human.txt", out.str()));
}

TEST_F(HumanWriterTest, ShowsTheSourceWithACaret) {
    finding_.place = {folder_.write("b.dita", "<t>\r\n\t<p keyref=\"\xC3\xBC\"/>\r\n"), 2, 2};
    finding_.hint = "did you\nmean?";
    finding_.via = {{{folder_.file("a.dita"), 14, 32}, "conref b.dita#t/p"}, {{}, "href a.dita"}};
    EXPECT_EQ(written(),
              "b.dita:2:2: error: text [MP105]\n"
              "    \t<p keyref=\"\xC3\xBC\"/>\n"
              "    \t^\n"
              "  hint: did you\\nmean?\n"
              "  via a.dita:14:32: conref b.dita#t/p\n"
              "  via href a.dita\n");
}

TEST_F(HumanWriterTest, ShowsNoSourceWhereThereIsNone) {
    for (const FindingPlace& place :
         {FindingPlace{folder_.write("b.dita", "<t/>\n"), 2, 1},
          FindingPlace{folder_.file("b.dita"), 0, 0}, FindingPlace{folder_.file("none"), 1, 1}}) {
        finding_.place = place;
        const std::string text = written();
        EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
    }
}

TEST_F(HumanWriterTest, CutsTheSourceToTheWidth) {
    finding_.place = {folder_.write("b.dita", std::string(200, 'x') + "<p/>"), 1, 201};
    options_.width = 30;
    EXPECT_EQ(written(),
              "b.dita:1:201: error: text [MP105]\n"
              "    ...xxxxxxxxxxxxxxxx<p/>\n"
              "                       ^\n");
}

TEST_F(HumanWriterTest, NamesThreePlacesAndCountsTheRest) {
    for (std::uint32_t line = 1; line <= 3; ++line) {
        finding_.places.push_back({folder_.file("c.dita"), line, 1});
    }
    const std::string three =
        "marrowpress: error: text [MP105]\n"
        "  also at c.dita:1:1\n  also at c.dita:2:1\n  also at c.dita:3:1\n";
    EXPECT_EQ(written(), three);
    finding_.places.push_back({folder_.file("c.dita"), 4, 1});
    EXPECT_EQ(written(), three + "  and 1 more\n");
}

TEST_F(HumanWriterTest, NamesTheProfilesWhenAskedTo) {
    finding_.profiles = {folder_.file("home.ditaval"), folder_.file("tr\nade.ditaval")};
    EXPECT_EQ(written(), "marrowpress: error: text [MP105]\n");
    options_.showsProfiles = true;
    EXPECT_EQ(written(),
              "marrowpress: error: text [MP105]\n"
              "  profile home.ditaval\n  profile tr\\nade.ditaval\n");
}

TEST_F(HumanWriterTest, ColoursTheCaretLikeTheSeverity) {
    finding_.place = {folder_.write("b.dita", "<t/>"), 1, 1};
    options_.isColoured = true;
    EXPECT_EQ(written(),
              "\x1B[1mb.dita:1:1:\x1B[0m \x1B[1;31merror:\x1B[0m text [MP105]\n"
              "    <t/>\n"
              "    \x1B[1;31m^\x1B[0m\n");
}

TEST_F(HumanWriterTest, ItsWordsAreThoseOfTheLanguage) {
    options_.words.error = "Fehler";
    options_.words.hint = "Hinweis";
    options_.words.via =
        "\xC3\xBC"
        "ber";
    finding_.hint = "x";
    finding_.via = {{{"/a.dita", 1, 1}, "href b.dita"}};
    EXPECT_EQ(written(),
              "marrowpress: Fehler: text [MP105]\n"
              "  Hinweis: x\n"
              "  \xC3\xBC"
              "ber /a.dita:1:1: href b.dita\n");
}

}  // namespace
}  // namespace marrowpress
