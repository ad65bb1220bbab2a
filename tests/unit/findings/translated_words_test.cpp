#include "findings/translated_words.h"

#include <gtest/gtest.h>

#include "tests/support/chosen_language.h"

namespace marrowpress {
namespace {

TEST(TranslatedWordsTest, AreThoseOfTheLanguage) {
    EXPECT_EQ(translatedWords().error, "Fehler");
    EXPECT_EQ(translatedWords().warnings.one, "Warnung");
    EXPECT_EQ(translatedWords().warnings.many, "Warnungen");
    const ChosenLanguage english(Language::kEnglish);
    EXPECT_EQ(translatedWords().error, "error");
    EXPECT_EQ(translatedWords().hint, "hint");
    EXPECT_EQ(translatedWords().topics.one, "topic");
    EXPECT_EQ(translatedWords().topics.many, "topics");
}

TEST(TranslatedWordsTest, InEnglishAreThoseThatFormatsHaveByThemselves) {
    const ChosenLanguage english(Language::kEnglish);
    const Words words = translatedWords();
    const Words usual;
    EXPECT_EQ(words.via, usual.via);
    EXPECT_EQ(words.also, usual.also);
    EXPECT_EQ(words.more, usual.more);
    EXPECT_EQ(words.in, usual.in);
    EXPECT_EQ(words.files.many, usual.files.many);
    EXPECT_EQ(words.notes.one, usual.notes.one);
}

}  // namespace
}  // namespace marrowpress
