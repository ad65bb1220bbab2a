#include "findings/language.h"

#include <cstdlib>

#include "findings/translations.h"
#include "host/own_place.h"

namespace marrowpress {
namespace {

Language chosen = Language::kGerman;

// As gettext names the files of a language, below the folder of translations. Whole paths: beside
// an installed command there may be a program whose name is "locale".
constexpr const char* kEnglishBeside = "locale/en/LC_MESSAGES/marrowpress.mo";
const InstalledPaths kEnglishInstalled{
    MARROWPRESS_LOCALE_FROM_PROGRAM "/en/LC_MESSAGES/marrowpress.mo",
    MARROWPRESS_LOCALE_FROM_LIBRARY "/en/LC_MESSAGES/marrowpress.mo"};

const Translations& english() {
    static const Translations texts(findBesideOrInstalled(kEnglishBeside, kEnglishInstalled));
    return texts;
}

/// The environment's value; null when it is not there or empty.
const char* environmentValue(const char* name) {
    const char* const value = std::getenv(name);
    return value && *value != '\0' ? value : nullptr;
}

}  // namespace

Language environmentLanguage() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const char* const value = environmentValue(name)) {
            const std::string_view locale = value;
            const std::string_view language = locale.substr(0, locale.find_first_of("_-.@"));
            return language == "de" ? Language::kGerman : Language::kEnglish;
        }
    }
    return Language::kEnglish;
}

void chooseLanguage(Language language) {
    chosen = language == Language::kAuto ? environmentLanguage() : language;
}

std::string translated(const char* german) {
    return chosen == Language::kGerman ? german : english().find(german, 1);
}

std::string translated(const char* german, std::initializer_list<std::string_view> arguments) {
    return filledIn(translated(german), arguments);
}

std::string translatedCount(const char* germanOne, const char* germanMany, std::size_t count,
                            std::initializer_list<std::string_view> arguments) {
    const std::string number = std::to_string(count);
    std::vector<std::string_view> all{number};
    all.insert(all.end(), arguments.begin(), arguments.end());
    if (chosen == Language::kGerman) {
        return filledIn(count == 1 ? germanOne : germanMany, all);
    }
    return filledIn(english().find(germanOne, count, germanMany), all);
}

std::string filledIn(std::string_view pattern, const std::vector<std::string_view>& arguments) {
    std::string text;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const bool isPlace = pattern[at] == '{' && at + 2 < pattern.size() &&
                             pattern[at + 1] >= '0' && pattern[at + 1] <= '9' &&
                             pattern[at + 2] == '}';
        const std::size_t number = isPlace ? pattern[at + 1] - '0' : arguments.size();
        if (number >= arguments.size()) {
            text += pattern[at];
            continue;
        }
        text += arguments[number];
        at += 2;
    }
    return text;
}

}  // namespace marrowpress
