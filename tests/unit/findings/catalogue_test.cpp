#include "findings/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/chosen_language.h"

namespace marrowpress {
namespace {

TEST(FindingIdsTest, AreSortedAndDiffer) {
    const std::vector<std::string>& ids = findingIds();
    EXPECT_EQ(ids.size(), 27U);
    EXPECT_EQ(ids.front(), "MP105");
    EXPECT_EQ(ids.back(), "MP302");
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
    EXPECT_EQ(std::adjacent_find(ids.begin(), ids.end()), ids.end());
}

TEST(DefaultSeverityTest, EachIdHasOne) {
    for (const std::string& id : findingIds()) {
        EXPECT_TRUE(defaultSeverity(id)) << id;
    }
    EXPECT_EQ(defaultSeverity("MP105"), Severity::kError);
    EXPECT_EQ(defaultSeverity("MP110"), Severity::kWarning);
    EXPECT_EQ(defaultSeverity("MP215"), Severity::kNote);
}

TEST(DefaultSeverityTest, AnUnknownIdHasNone) {
    EXPECT_FALSE(defaultSeverity("MP100"));
    EXPECT_FALSE(defaultSeverity(""));
    EXPECT_FALSE(defaultSeverity("mp105"));
}

TEST(ExplanationTest, EachIdHasAllTextsInBothLanguages) {
    for (const std::string& id : findingIds()) {
        const Explanation german = *explanationOf(id);
        const ChosenLanguage chosen(Language::kEnglish);
        const Explanation english = *explanationOf(id);
        EXPECT_NE(german.title, english.title) << id;
        EXPECT_NE(german.meaning, english.meaning) << id;
        EXPECT_NE(german.remedy, english.remedy) << id;
        EXPECT_FALSE(german.example.empty()) << id;
        EXPECT_EQ(german.example, english.example) << id;
        for (const Explanation& explanation : {german, english}) {
            EXPECT_FALSE(explanation.title.ends_with('.')) << id;
            EXPECT_TRUE(explanation.meaning.ends_with('.')) << id;
            EXPECT_TRUE(explanation.remedy.ends_with('.')) << id;
        }
    }
}

TEST(ExplanationTest, AnUnknownIdHasNone) {
    EXPECT_FALSE(explanationOf("MP100"));
    EXPECT_FALSE(explanationOf(""));
}

TEST(FindingTitleTest, IsThatOfTheExplanation) {
    EXPECT_EQ(findingTitle("MP105"), "Schlüssel nicht definiert");
    const ChosenLanguage english(Language::kEnglish);
    EXPECT_EQ(findingTitle("MP105"), "Key not defined");
    EXPECT_EQ(findingTitle("MP100"), "");
}

}  // namespace
}  // namespace marrowpress
