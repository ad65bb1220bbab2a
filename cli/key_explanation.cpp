#include "cli/key_explanation.h"

#include <optional>

#include "findings/characters.h"
#include "findings/finding_lines.h"
#include "findings/nearest.h"
#include "findings/shown_path.h"
#include "findings/wording.h"

namespace marrowpress {
namespace {

constexpr const char* kInner = "    ";

std::string indentedLine(const std::string& text) {
    return text.empty() ? "" : kInner + shownText(text) + "\n";
}

/// Why it counts, or does not.
std::string reasonOf(const KeyDefinition& definition, const ListedKey& key,
                     const std::string& currentFolder) {
    const KeyDefinition* const winner = key.effective();
    switch (definition.state) {
        case KeyState::kEffective:
            return key.definitions.size() == 1 ? onlyDefinitionText() : firstDefinitionText();
        case KeyState::kExcluded:
            return excludedDefinitionText();
        case KeyState::kLost:
            return lostDefinitionText();
        case KeyState::kShadowed:
            break;
    }
    if (!winner) {
        return {};
    }
    const std::string place = placeText(winner->place, currentFolder);
    return winner->place.file == definition.place.file ? laterInMapText(place)
                                                       : laterMapText(place);
}

std::string meaningText(const KeyDefinition& definition, const std::string& currentFolder) {
    std::string text;
    if (!definition.target.empty()) {
        text += indentedLine(keyTargetText(shownPath(definition.target, currentFolder)));
    }
    if (!definition.text.empty()) {
        text += indentedLine(keyContentText(definition.text));
    }
    return text;
}

std::string wayText(const KeyDefinition& definition, const std::string& currentFolder) {
    std::string text;
    for (const FindingStep& step : definition.via) {
        text +=
            indentedLine(viaWord() + " " + placeText(step.place, currentFolder) + ": " + step.what);
    }
    return text;
}

/// The keys that a definition that counts leads on to.
std::string chainText(const KeyDefinition& definition, const ListedKey& key, const KeyList& list) {
    std::string text;
    if (&definition == key.effective()) {
        for (const std::string& next : list.chainOf(key)) {
            text += indentedLine(keyLeadsOnText(next));
        }
    }
    return text;
}

std::string usesText(const ListedKey& key, const std::string& currentFolder) {
    std::string text = keyUseCountText(key.uses.size()) + "\n";
    for (const FindingPlace& use : key.uses) {
        text += kInner + placeText(use, currentFolder) + "\n";
    }
    return text;
}

std::string undefinedText(const KeyList& list, const ListedKey& key) {
    const std::optional<std::string> nearest = nearestName(key.name, list.definedNames());
    std::string text = shownText(keyNotFoundText(key.name)) + "\n";
    if (nearest) {
        text += hintWord() + ": " + shownText(didYouMeanHint(*nearest)) + "\n";
    }
    return text;
}

}  // namespace

std::string keyExplanation(const KeyList& list, const ListedKey& key,
                           const std::string& currentFolder) {
    std::string text =
        shownText(key.name) + ": " + keyDefinitionCountText(key.definitions.size()) + "\n";
    if (!key.effective()) {
        text += undefinedText(list, key);
    }
    if (key.definitions.size() > 1) {
        text += keyOrderText() + "\n";
    }
    std::size_t number = 0;
    for (const KeyDefinition& definition : key.definitions) {
        text += "\n" + std::to_string(++number) + ". " +
                placeText(definition.place, currentFolder) + "\n" +
                indentedLine(reasonOf(definition, key, currentFolder)) +
                chainText(definition, key, list) + meaningText(definition, currentFolder) +
                wayText(definition, currentFolder);
    }
    return text + "\n" + usesText(key, currentFolder);
}

}  // namespace marrowpress
