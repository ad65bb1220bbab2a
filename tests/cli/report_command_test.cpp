#include <gtest/gtest.h>

#include "tests/cli/command_fixture.h"

namespace marrowpress {
namespace {

class ReportTest : public CommandTest {
protected:
    ReportTest() {
        writeTopic("a", R"(<p keyref="gone">See <xref href="b.dita">b</xref></p>)");
        writeMap(
            "\n<topicref href=\"a.dita\"/>\n<topicref href=\"b.dita\" audience=\"expert\"/>\n"
            "<topicref keys=\"product\"><topicmeta><linktext>Drill</linktext></topicmeta>"
            "</topicref>\n");
        folder_.write("p.ditaval",
                      R"(<val><prop att="audience" val="expert" action="exclude"/></val>)");
    }

    bool pageHolds(const std::string& text) const {
        return folder_.read("r.html").find(text) != std::string::npos;
    }
};

TEST_F(ReportTest, CheckWritesAPageOfWhatItMet) {
    const CommandResult result =
        check({"--filter", "p.ditaval", "--report", "r.html", "--lang", "en"});
    EXPECT_EQ(result.code, 3) << result.err;
    EXPECT_TRUE(pageHolds("<strong>The map can be published, with errors</strong>"));
    EXPECT_TRUE(pageHolds("The key `gone` is not defined"));
    EXPECT_TRUE(pageHolds("<mark>&lt;p keyref=&quot;gone&quot;&gt;</mark>"));
    EXPECT_TRUE(pageHolds("<em>excluded</em> <code>audience=&quot;expert&quot;</code>"));
    EXPECT_TRUE(pageHolds("<tr class=unused><th>product<td>unused<td><a href=#f:m>m:4</a>"));
    EXPECT_TRUE(pageHolds("<dt>links to<dd>b"));
}

TEST_F(ReportTest, PublishWritesItTooAndTheOutputIsAsWithout) {
    EXPECT_EQ(publish({"--lang", "de"}).code, 3);
    const std::string output = folder_.read("out/m.dita");
    const CommandResult result = publish({"--report", "r.html", "--lang", "de"});
    EXPECT_EQ(result.code, 3) << result.err;
    EXPECT_EQ(folder_.read("out/m.dita"), output);
    EXPECT_TRUE(pageHolds("<strong>Die Veröffentlichung ist vollständig, mit Fehlern</strong>"));
    EXPECT_TRUE(pageHolds("<dt>Ausgabe<dd><code>out/m.dita</code>"));
}

TEST_F(ReportTest, APageOfAnEarlierRunIsReplacedAndNothingElse) {
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(check({"--report", "r.html"}).code, 3);
    }
    folder_.write("own.html", "<!DOCTYPE html><p>mine</p>");
    for (const std::string file : {"own.html", "docs/a.dita"}) {
        const CommandResult result = check({"--report", file});
        EXPECT_EQ(result.code, 2) << file;
        EXPECT_EQ(result.err.find("marrowpress check: --report: " + file), 0U) << result.err;
    }
    EXPECT_EQ(folder_.read("own.html"), "<!DOCTYPE html><p>mine</p>");
}

TEST_F(ReportTest, ARunThatFailsHasItsPage) {
    folder_.write("docs/k.ditamap", "<map>");
    writeMap("<topicref href=\"k.ditamap\"/>");
    const CommandResult result = check({"--report", "r.html", "--lang", "en"});
    EXPECT_EQ(result.code, 1) << result.err;
    EXPECT_TRUE(pageHolds("<strong>The map cannot be published</strong>"));
    EXPECT_TRUE(pageHolds("MP106"));
}

TEST_F(ReportTest, OnePageShowsOnePublication) {
    const CommandResult result = check({"--each-filter", "p.ditaval", "--report", "r.html"});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err.substr(0, result.err.find('\n')),
              "marrowpress check: --report: each of --each-filter makes another publication; a "
              "page shows one");
    EXPECT_FALSE(folder_.exists("r.html"));
}

TEST_F(ReportTest, HostileSourcesAreText) {
    folder_.write("docs/x'\"><script>alert(1)<\x01.dita",
                  "<topic id=\"x\"><title>&lt;/script>&lt;img src=x></title></topic>");
    writeMap(
        "<topicref navtitle=\"&lt;/script>&lt;b>\" "
        "href=\"x'&quot;&gt;&lt;script&gt;alert(1)&lt;&#x1;.dita\"/>"
        "<topichead navtitle=\"&lt;/script>&lt;b>\"/>"
        "<topicref keys=\"&lt;/script>\" href=\"a.dita\"/>"
        "<topicref href=\"&lt;/script>&quot;.dita\"/>");
    check({"--report", "r.html"});
    const std::string page = folder_.read("r.html");
    std::size_t scripts = 0;
    for (std::size_t at = page.find("<script"); at != std::string::npos;
         at = page.find("<script", at + 1)) {
        ++scripts;
    }
    EXPECT_EQ(scripts, 1U);
    EXPECT_FALSE(pageHolds("<img"));
    EXPECT_TRUE(pageHolds("&lt;/script&gt;&lt;b&gt;"));
}

}  // namespace
}  // namespace marrowpress
