#include "findings/language.h"

#include <gtest/gtest.h>
#include <locale.h>
#include <stdlib.h>

#include <map>
#include <optional>

namespace marrowpress {
namespace {

constexpr const char* kLanguageVariables[] = {"LC_ALL", "LC_MESSAGES", "LANG", "LANGUAGE"};

/// Gives the process its environment and the language German back.
class LanguageTest : public testing::Test {
protected:
    LanguageTest() {
        for (const char* const name : kLanguageVariables) {
            const char* const value = getenv(name);
            before_[name] = value ? std::optional<std::string>(value) : std::nullopt;
            unsetenv(name);
        }
    }
    ~LanguageTest() override {
        for (const auto& [name, value] : before_) {
            set(name, value);
        }
        chooseLanguage(Language::kGerman);
    }

    static void set(const std::string& name, const std::optional<std::string>& value) {
        if (value) {
            setenv(name.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name.c_str());
        }
    }

private:
    std::map<std::string, std::optional<std::string>> before_;
};

constexpr const char* kText = "Der Schlüssel `{0}` ist nicht definiert";

TEST_F(LanguageTest, GermanIsTheOriginal) {
    chooseLanguage(Language::kGerman);
    EXPECT_EQ(translated(kText), kText);
    EXPECT_EQ(translated(kText, {"größe"}), "Der Schlüssel `größe` ist nicht definiert");
}

TEST_F(LanguageTest, EnglishIsTranslatedInTheLocaleOfTheProcess) {
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), "C");
    chooseLanguage(Language::kEnglish);
    EXPECT_EQ(translated(kText, {"größe"}), "The key `größe` is not defined");
    EXPECT_EQ(translated("Steht in keiner Übersetzung"), "Steht in keiner Übersetzung");
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), "C");
}

TEST_F(LanguageTest, WhatTheUserPrefersDoesNotComeBetween) {
    setenv("LANGUAGE", "fr:de", 1);
    chooseLanguage(Language::kEnglish);
    EXPECT_EQ(translated(kText, {"a"}), "The key `a` is not defined");
}

TEST_F(LanguageTest, MayBeChosenAgain) {
    chooseLanguage(Language::kEnglish);
    chooseLanguage(Language::kGerman);
    EXPECT_EQ(translated(kText), kText);
    chooseLanguage(Language::kEnglish);
    EXPECT_EQ(translated(kText, {"a"}), "The key `a` is not defined");
}

TEST_F(LanguageTest, ACountDecidesBetweenOneAndMany) {
    constexpr const char* kOne = "{0} Fehler";
    constexpr const char* kMany = "{0} Fehler";
    EXPECT_EQ(translatedCount(kOne, kMany, 2), "2 Fehler");
    EXPECT_EQ(translatedCount("{0} Datei", "{0} Dateien", 1), "1 Datei");
    EXPECT_EQ(translatedCount("{0} Datei", "{0} Dateien", 0), "0 Dateien");
    chooseLanguage(Language::kEnglish);
    EXPECT_EQ(translatedCount(kOne, kMany, 0), "0 errors");
    EXPECT_EQ(translatedCount(kOne, kMany, 1), "1 error");
    EXPECT_EQ(translatedCount(kOne, kMany, 2), "2 errors");
}

struct EnvironmentCase {
    const char* all;
    const char* messages;
    const char* lang;
    Language language;
};

TEST_F(LanguageTest, AutoFollowsTheEnvironment) {
    const EnvironmentCase cases[] = {
        {nullptr, nullptr, nullptr, Language::kEnglish},
        {nullptr, nullptr, "de_DE.UTF-8", Language::kGerman},
        {nullptr, nullptr, "de", Language::kGerman},
        {nullptr, nullptr, "de.UTF-8", Language::kGerman},
        {nullptr, nullptr, "de_AT@euro", Language::kGerman},
        {nullptr, "de_CH", "en_GB.UTF-8", Language::kGerman},
        {"de_DE", "en_GB", "en_GB", Language::kGerman},
        {"", "", "de_DE", Language::kGerman},
        {"C", "de_DE", "de_DE", Language::kEnglish},
        {nullptr, "C.UTF-8", "de_DE", Language::kEnglish},
        {nullptr, nullptr, "POSIX", Language::kEnglish},
        {nullptr, nullptr, "tr_TR.UTF-8", Language::kEnglish},
        {nullptr, nullptr, "den_CA", Language::kEnglish},
        {nullptr, nullptr, "DE", Language::kEnglish},
        {"", "", "", Language::kEnglish},
    };
    const auto optional = [](const char* value) {
        return value ? std::optional<std::string>(value) : std::nullopt;
    };
    for (const EnvironmentCase& c : cases) {
        set("LC_ALL", optional(c.all));
        set("LC_MESSAGES", optional(c.messages));
        set("LANG", optional(c.lang));
        EXPECT_EQ(environmentLanguage(), c.language) << (c.lang ? c.lang : "unset");
        chooseLanguage(Language::kAuto);
        EXPECT_EQ(translated(kText) == kText, c.language == Language::kGerman);
    }
}

TEST(FilledInTest, PutsArgumentsInTheirPlaces) {
    EXPECT_EQ(filledIn("", {}), "");
    EXPECT_EQ(filledIn("no place", {"a"}), "no place");
    EXPECT_EQ(filledIn("{0}", {"a"}), "a");
    EXPECT_EQ(filledIn("{1} before {0}, {1}", {"a", "b"}), "b before a, b");
    EXPECT_EQ(filledIn("`{0}`: {1}", {"", "x"}), "``: x");
}

TEST(FilledInTest, NeverLooksIntoAnArgument) {
    EXPECT_EQ(filledIn("{0} {1}", {"{1}", "{0}%s%n"}), "{1} {0}%s%n");
}

TEST(FilledInTest, WhatIsNoPlaceStays) {
    EXPECT_EQ(filledIn("{ {} {x} {0 {10} {2} }", {"a", "b"}), "{ {} {x} {0 {10} {2} }");
    EXPECT_EQ(filledIn("{{0}}", {"a"}), "{a}");
}

}  // namespace
}  // namespace marrowpress
