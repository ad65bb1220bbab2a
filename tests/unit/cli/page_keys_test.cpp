#include "cli/page_keys.h"

#include <gtest/gtest.h>

#include "tests/support/told_keys.h"
#include "tests/support/told_page.h"

namespace marrowpress {
namespace {

class KeysPartTest : public testing::Test, protected ToldKeys, protected ToldPage {};

TEST_F(KeysPartTest, AKeyHasItsDefinitionsMeaningAndUses) {
    tellAll();
    const std::string html = keysPart(list, *files);
    EXPECT_TRUE(holds(
        html,
        "<tr class=used><th>a<td>used<td><a href=#f:m>m:4</a><details><summary>2 definitions"
        "</summary><ol><li><a href=#f:m>m:4</a> <em>counts</em> <a href=#f:t>t.dita#t</a> "
        "<q>An &quot;A&quot;</q><li>k.ditamap:3 <em>shadowed</em> old.dita</ol></details><td>"
        "<a href=#f:t>t.dita#t</a> <q>An &quot;A&quot;</q><td>b<td><details><summary>2</summary>"
        "t:6, t:7</details>\n"))
        << html;
    EXPECT_TRUE(holds(html, "<tr class=excluded><th>off<td>excluded<td><a href=#f:m>m:9</a>"))
        << html;
    EXPECT_TRUE(holds(html, "<tr class=undefined><th>gone<td>undefined<td><td><td><td>")) << html;
    EXPECT_FALSE(holds(html, "<option value=\"unused\">"));
    EXPECT_TRUE(holds(html, "<option value=\"excluded\">excluded</option>"));
}

TEST_F(KeysPartTest, FurtherUsesAreCounted) {
    define("a", KeyState::kEffective, "/w/m.ditamap", 4);
    for (std::uint32_t line = 1; line <= 7; ++line) {
        refer("a", "/w/t.dita", line);
    }
    list.finish();
    EXPECT_TRUE(holds(keysPart(list, *files),
                      "<summary>7</summary>t:1, t:2, t:3, t:4, t:5 and 2 more</details>"));
}

TEST_F(KeysPartTest, HostileNamesAndLongTextsAreText) {
    define("</script>\"'\x01", KeyState::kEffective, "/w/m.ditamap", 4);
    mean("</script>\"'\x01", "/w/m.ditamap", 4, "", (std::string(119, 'x') + "üüü").c_str());
    list.finish();
    const std::string html = keysPart(list, *files);
    EXPECT_TRUE(holds(html, "<th>&lt;/script&gt;&quot;&#39;\\x01<td>")) << html;
    EXPECT_TRUE(holds(html, "<q>" + std::string(119, 'x') + "...</q>")) << html;
}

TEST_F(KeysPartTest, SaysThatThereAreNone) {
    const std::string html = keysPart(list, *files);
    EXPECT_TRUE(holds(html, "There are no keys."));
    EXPECT_FALSE(holds(html, "<table>"));
}

}  // namespace
}  // namespace marrowpress
