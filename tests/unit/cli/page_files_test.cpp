#include "cli/page_files.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/support/chosen_language.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/told_files.h"

namespace marrowpress {
namespace {

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class PageFilesTest : public testing::Test {
protected:
    PageFiles page(const std::unordered_set<std::string>& documents = {}) {
        files.list.finish();
        neighbourhood = std::make_unique<Neighbourhood>(files.list, keys);
        return {*neighbourhood, exclusions, documents, "/w"};
    }

    ChosenLanguage english{Language::kEnglish};
    ToldFiles files;
    KeyList keys;
    ExclusionList exclusions;
    std::unique_ptr<Neighbourhood> neighbourhood;
};

TEST_F(PageFilesTest, AnEntryNamesTheNeighboursByKind) {
    files.refer(ReferenceKind::kTopic, "/w/m.ditamap", 2, "/w/t.dita");
    files.refer(ReferenceKind::kLink, "/w/t.dita", 5, "/w/u.dita");
    files.refer(ReferenceKind::kLink, "/w/t.dita", 6, "/w/z.dita");
    const std::string html = page().part();
    EXPECT_TRUE(holds(html,
                      "<details id=f:t><summary><code>t.dita</code> <em>absent</em></summary>"
                      "<dl><dt>links to<dd>u, z</dl><dl class=in><dt>taken in by<dd>m</dl>"
                      "</details>\n"))
        << html;
    EXPECT_FALSE(holds(html, "scriptless"));
}

TEST_F(PageFilesTest, BeyondSomeSizeTheScriptFindsThoseWhoRefer) {
    const std::string name(100, 'x');
    for (std::size_t count = 0; count * name.size() <= PageFiles::kMostIncomingBytes; ++count) {
        files.refer(ReferenceKind::kLink, "/w/" + name + std::to_string(count), 5, "/w/t.dita");
        files.refer(ReferenceKind::kTopic, "/w/m.ditamap", 5, "/w/" + name + std::to_string(count));
    }
    const std::string html = page().part();
    EXPECT_FALSE(holds(html, "class=in"));
    EXPECT_TRUE(holds(html, "scriptless"));
}

TEST_F(PageFilesTest, LinksLeadToEntriesThatAreThere) {
    files.refer(ReferenceKind::kTopic, "/w/m.ditamap", 2, "/w/a b.dita");
    const PageFiles files = page();
    EXPECT_EQ(files.linked("/w/a b.dita", "<b>x</b>"), "<a href=#f:a%20b><b>x</b></a>");
    EXPECT_EQ(files.linked("/w/none.dita", "x"), "x");
    EXPECT_EQ(files.linked(FindingPlace{"/w/a b.dita", 3, 4}),
              "<code><a href=#f:a%20b>a b.dita:3:4</a></code>");
    EXPECT_EQ(files.briefLinked({"/w/a b.dita", 3, 4}), "<a href=#f:a%20b>a%20b:3</a>");
    EXPECT_EQ(files.brief({"/w/none.dita", 0, 0}), "none.dita");
}

TEST_F(PageFilesTest, DocumentsHaveTheirTitles) {
    const TemporaryFolder folder;
    const std::string topic = folder.write("t.dita", "<t><title>A &lt;b></title></t>");
    files.refer(ReferenceKind::kTopic, "/w/m.ditamap", 2, topic);
    const PageFiles files = page({topic});
    EXPECT_EQ(files.title(topic), "A <b>");
    EXPECT_EQ(files.title("/w/m.ditamap"), "");
    EXPECT_EQ(files.title("/w/none"), "");
    EXPECT_TRUE(holds(files.part(), "<summary>A &lt;b&gt; <code>"));
}

TEST_F(PageFilesTest, HostileNamesAreText) {
    files.refer(ReferenceKind::kTopic, "/w/m.ditamap", 2, "/w/\"></script><b>&\n.dita");
    const std::string html = page().part();
    EXPECT_FALSE(holds(html, "</script>"));
    EXPECT_TRUE(holds(html, "id=f:script%3E%3Cb%3E%26\\n>")) << html;
    EXPECT_TRUE(holds(html, "&quot;&gt;&lt;/script&gt;&lt;b&gt;&amp;\\n.dita")) << html;
}

TEST(NeighbourWordsTest, AreDifferentForEachKindAndHaveNoBar) {
    for (const Language language : {Language::kGerman, Language::kEnglish}) {
        const ChosenLanguage chosen(language);
        for (const auto& words : {outgoingWords(), incomingWords()}) {
            EXPECT_EQ(words.size(), kNeighbourKinds);
            EXPECT_EQ(std::set<std::string>(words.begin(), words.end()).size(), kNeighbourKinds);
            for (const std::string& word : words) {
                EXPECT_EQ(word.find('|'), std::string::npos);
            }
        }
    }
}

}  // namespace
}  // namespace marrowpress
