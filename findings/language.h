#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace marrowpress {

enum class Language : std::uint8_t {
    kAuto,  ///< What the environment says.
    kGerman,
    kEnglish,
};

/// The language that the environment asks for: LC_ALL, LC_MESSAGES, LANG, of which the first that
/// is there and not empty counts. German when it says so, English otherwise. Never `kAuto`.
Language environmentLanguage();

/// The language of all texts from now on; German until this is called. Not for several threads.
///
/// Neither a locale nor the environment of the process is changed, so that nothing else reads or
/// writes in another way.
void chooseLanguage(Language language);

/// The text in the language that was chosen. The texts in the code are German; a text without a
/// translation stays as it is. UTF-8, as all texts here.
std::string translated(const char* german);

/// As above, with each "{0}", "{1}", ... replaced by the argument of that number. No argument is
/// looked into.
std::string translated(const char* german, std::initializer_list<std::string_view> arguments);

/// The one of two texts that goes with `count`, which is also its argument 0; what is in
/// `arguments` follows.
std::string translatedCount(const char* germanOne, const char* germanMany, std::size_t count,
                            std::initializer_list<std::string_view> arguments = {});

/// Only marks a text in a table, which is translated where it is used.
constexpr const char* toTranslate(const char* german) {
    return german;
}

/// Two texts that go with a count.
struct CountTexts {
    const char* germanOne;
    const char* germanMany;
};

/// As `toTranslate`.
constexpr CountTexts toTranslateCount(const char* germanOne, const char* germanMany) {
    return {germanOne, germanMany};
}

/// `pattern` with each "{0}" to "{9}" replaced by the argument of that number, as often as it is
/// there; a number that has no argument stays.
std::string filledIn(std::string_view pattern, const std::vector<std::string_view>& arguments);

}  // namespace marrowpress
