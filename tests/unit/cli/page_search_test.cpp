#include "cli/page_search.h"

#include <gtest/gtest.h>

#include "tests/support/chosen_language.h"

namespace marrowpress {
namespace {

TEST(SearchFormTest, IsHiddenUntilAScriptShowsIt) {
    EXPECT_EQ(searchForm("keys", "Search <keys>"),
              "<form class=search role=search aria-label=\"Search &lt;keys&gt;\" data-part=keys "
              "hidden>\n<label>Search &lt;keys&gt; <input type=search autocomplete=off></label>\n"
              "<output aria-live=polite></output>\n</form>\n");
}

TEST(SearchFormTest, ChoicesStandBehindThatOfAllRows) {
    const ChosenLanguage english(Language::kEnglish);
    EXPECT_NE(searchForm("keys", "Search", {{"unused", "un\"used"}})
                  .find("<label>Show <select><option value=\"\">all</option>"
                        "<option value=\"unused\">un&quot;used</option></select></label>"),
              std::string::npos);
}

}  // namespace
}  // namespace marrowpress
