#include "cli/page_findings.h"

#include <gtest/gtest.h>

#include "tests/support/sample_findings.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/told_page.h"

namespace marrowpress {
namespace {

class FindingsPartTest : public testing::Test, protected ToldPage {
protected:
    static Finding findingOf(const std::string& id, Severity severity, const std::string& text) {
        Finding finding;
        finding.id = id;
        finding.severity = severity;
        finding.text = text;
        finding.place = {"/w/t.dita", 3, 4};
        return finding;
    }
};

TEST_F(FindingsPartTest, ThoseOfOneIdStandTogetherAndErrorsComeFirst) {
    const std::string html = findingsPart(
        {findingOf("MP208", Severity::kWarning, "one"), findingOf("MP105", Severity::kError, "two"),
         findingOf("MP208", Severity::kWarning, "three")},
        *files);
    EXPECT_LT(html.find("<h3 id=MP105><strong class=error>error</strong>"),
              html.find("<h3 id=MP208><strong class=warning>warning</strong>"));
    EXPECT_TRUE(holds(html, "<small>MP208 · 2</small>"));
    EXPECT_TRUE(holds(html, "<li class=warning><p>three</p><code><a href=#f:t>t.dita:3:4</a>"));
    EXPECT_TRUE(holds(html, "<option value=\"error\">"));
    EXPECT_FALSE(holds(html, "<option value=\"note\">"));
}

TEST_F(FindingsPartTest, TheStartTagIsMarkedInItsLine) {
    const TemporaryFolder folder;
    Finding finding = findingOf("MP105", Severity::kError, "x");
    finding.place = {folder.write("a.dita", "<a>\n\tü界 <b c=\"&lt;\"/> d</a>"), 2, 5};
    EXPECT_TRUE(holds(findingsPart({finding}, *files),
                      "<pre><span>2</span>ü界 <mark>&lt;b c=&quot;&amp;lt;&quot;/&gt;</mark> "
                      "d&lt;/a&gt;</pre>"));
    finding.place.column = 2;
    EXPECT_TRUE(holds(findingsPart({finding}, *files), "<span>2</span><mark>ü</mark>界"));
    finding.place.column = 99;
    EXPECT_TRUE(holds(findingsPart({finding}, *files), "<span>2</span>\tü界 &lt;b"));
    finding.place.line = 9;
    EXPECT_FALSE(holds(findingsPart({finding}, *files), "<pre>"));
}

TEST_F(FindingsPartTest, FewFurtherLinesStandOpen) {
    Finding finding = findingOf("MP105", Severity::kError, "x");
    finding.via = {{{"/w/m.ditamap", 2, 1}, "href <t.dita>"}};
    EXPECT_TRUE(holds(findingsPart({finding}, *files),
                      "<ul><li>via <code><a href=#f:m>m.ditamap:2:1</a></code> <code>href "
                      "&lt;t.dita&gt;</code></ul>"));
    for (std::uint32_t line = 1; line <= 30; ++line) {
        finding.places.push_back({"/w/t.dita", line, 1});
    }
    const std::string html = findingsPart({finding}, *files);
    EXPECT_TRUE(holds(html, "<details><summary>Way to the map, and further places</summary><ul>"));
    EXPECT_TRUE(holds(html, "<li>and 10 more</ul>"));
}

TEST_F(FindingsPartTest, ManyOfOneIdAreCounted) {
    const std::vector<Finding> findings(130, findingOf("MP105", Severity::kError, "x"));
    EXPECT_TRUE(holds(findingsPart(findings, *files), "</ol>\n<p>and 30 more</p>"));
}

TEST_F(FindingsPartTest, AllTextsAreEscaped) {
    std::vector<Finding> findings = sampleFindings();
    Finding hostile = findingOf("MP105", Severity::kError, "</script>\"'\x01");
    hostile.hint = "<!--";
    hostile.isArtefact = true;
    hostile.place.file = "/w/<b>\n";
    findings.push_back(hostile);
    const std::string html = findingsPart(findings, *files);
    EXPECT_FALSE(holds(html, "</script>"));
    EXPECT_FALSE(holds(html, "<!--"));
    EXPECT_FALSE(holds(html, "\x01"));
    EXPECT_TRUE(holds(html, "&lt;/script&gt;&quot;&#39;\\x01"));
    EXPECT_TRUE(holds(html, "&lt;b&gt;\\n:3:4"));
}

TEST_F(FindingsPartTest, SaysThatThereAreNone) {
    EXPECT_TRUE(holds(findingsPart({}, *files), "There are no findings."));
}

}  // namespace
}  // namespace marrowpress
