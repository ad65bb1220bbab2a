#include "findings/translated_words.h"

#include <cstddef>
#include <string>

#include "findings/language.h"
#include "findings/wording.h"

namespace marrowpress {
namespace {

/// What stands behind the number in the texts for one and for several.
CountedNoun nounOf(std::string (*textOf)(std::size_t)) {
    const auto behindNumber = [](const std::string& text) {
        return text.substr(text.find(' ') + 1);
    };
    return {behindNumber(textOf(1)), behindNumber(textOf(2))};
}

}  // namespace

Words translatedWords() {
    Words words;
    words.error = severityWord(Severity::kError);
    words.warning = severityWord(Severity::kWarning);
    words.note = severityWord(Severity::kNote);
    words.hint = hintWord();
    words.via = viaWord();
    words.also = alsoWord();
    words.profile = translated("Profil");
    words.artefact = translated("ohne Bedeutung für die Ausgabe");
    words.more = translated("und {0} weitere");
    words.in = translated("in");
    words.errors = nounOf(errorCountText);
    words.warnings = nounOf(warningCountText);
    words.notes = nounOf(noteCountText);
    words.files = nounOf(fileCountText);
    words.topics = nounOf(topicCountText);
    return words;
}

}  // namespace marrowpress
