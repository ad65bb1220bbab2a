#include "findings/language.h"

#include <libintl.h>
#include <locale.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace marrowpress {
namespace {

constexpr const char* kDomain = "marrowpress";

Language chosen = Language::kGerman;

/// The folder of translations: beside the program, as in a build, or where it was installed.
std::filesystem::path translationFolder() {
    std::error_code ignored;
    const std::filesystem::path program =
        std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
    std::filesystem::path beside = program / "locale";
    if (std::filesystem::is_directory(beside, ignored)) {
        return beside;
    }
    return (program / MARROWPRESS_LOCALE_FOLDER).lexically_normal();
}

/// Makes the thread's messages translatable for the length of a scope.
///
/// In the locale "C", which the process has, nothing is translated. This one, which the C library
/// has built in, is "C" in all else.
class TranslatingScope {
public:
    TranslatingScope() : before_(uselocale(translating())) {}
    TranslatingScope(const TranslatingScope&) = delete;
    TranslatingScope& operator=(const TranslatingScope&) = delete;
    ~TranslatingScope() { uselocale(before_); }

private:
    static locale_t translating() {
        static const locale_t locale = newlocale(LC_MESSAGES_MASK, "C.UTF-8", nullptr);
        return locale;
    }

    locale_t before_;
};

void prepareEnglish() {
    setenv("LANGUAGE", "en", 1);
    bindtextdomain(kDomain, translationFolder().c_str());
    bind_textdomain_codeset(kDomain, "UTF-8");
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
    if (chosen == Language::kEnglish) {
        prepareEnglish();
    }
}

std::string translated(const char* german) {
    if (chosen == Language::kGerman) {
        return german;
    }
    const TranslatingScope scope;
    return dgettext(kDomain, german);
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
    const TranslatingScope scope;
    return filledIn(dngettext(kDomain, germanOne, germanMany, count), all);
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
