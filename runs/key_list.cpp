#include "runs/key_list.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

#include "findings/run_facts.h"

namespace marrowpress {
namespace {

bool isEffective(const KeyDefinition& definition) {
    return definition.state == KeyState::kEffective;
}

/// `text` with one blank for each white space in it, and none around it.
std::string withSingleBlanks(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    std::string words;
    std::size_t begin = text.find_first_not_of(kBlanks);
    while (begin != std::string_view::npos) {
        const std::size_t end = std::min(text.find_first_of(kBlanks, begin), text.size());
        words.append(words.empty() ? "" : " ").append(text.substr(begin, end - begin));
        begin = text.find_first_not_of(kBlanks, end);
    }
    return words;
}

bool comesBefore(const FindingPlace& left, const FindingPlace& right) {
    return std::tie(left.file, left.line, left.column) <
           std::tie(right.file, right.line, right.column);
}

/// Of one map, those that the profile leaves out are told before all others.
void sortByPlace(std::vector<KeyDefinition>& definitions) {
    auto begin = definitions.begin();
    while (begin != definitions.end()) {
        const auto end = std::find_if(begin, definitions.end(), [&](const auto& definition) {
            return definition.place.file != begin->place.file;
        });
        std::stable_sort(begin, end, [](const KeyDefinition& left, const KeyDefinition& right) {
            return comesBefore(left.place, right.place);
        });
        begin = end;
    }
}

}  // namespace

const char* nameOf(KeyUse use) {
    switch (use) {
        case KeyUse::kUsed:
            return "used";
        case KeyUse::kUnused:
            return "unused";
        case KeyUse::kUndefined:
            return "undefined";
        case KeyUse::kExcluded:
            break;
    }
    return "excluded";
}

const KeyDefinition* ListedKey::effective() const {
    const auto found = std::find_if(definitions.begin(), definitions.end(), isEffective);
    return found == definitions.end() ? nullptr : &*found;
}

const KeyDefinition* ListedKey::leading() const {
    if (const KeyDefinition* const definition = effective()) {
        return definition;
    }
    const auto excluded = std::find_if(
        definitions.begin(), definitions.end(),
        [](const KeyDefinition& definition) { return definition.state == KeyState::kExcluded; });
    if (excluded != definitions.end()) {
        return &*excluded;
    }
    return definitions.empty() ? nullptr : &definitions.front();
}

KeyUse ListedKey::use() const {
    const KeyDefinition* const definition = leading();
    if (definition && definition->state == KeyState::kExcluded) {
        return KeyUse::kExcluded;
    }
    if (!definition || !isEffective(*definition)) {
        return KeyUse::kUndefined;
    }
    return uses.empty() ? KeyUse::kUnused : KeyUse::kUsed;
}

void KeyList::observe(const Observation& observation) {
    if (observation.kind == ObservationKind::kKeyDefinition) {
        addDefinition(observation);
    } else if (observation.kind == ObservationKind::kKeyMeaning) {
        addMeaning(observation);
    } else if (observation.kind == ObservationKind::kKeyReference) {
        addUse(observation);
    }
}

ListedKey& KeyList::keyOf(const std::string& name) {
    const auto [entry, isNew] = index_.try_emplace(name, keys_.size());
    if (isNew) {
        keys_.push_back({name, {}, {}});
    }
    return keys_[entry->second];
}

void KeyList::addDefinition(const Observation& observation) {
    KeyDefinition definition{static_cast<KeyState>(observation.code),
                             placeOf(observation.steps[0].place),
                             observation.element,
                             observation.detail,
                             {},
                             observation.reason,
                             wayOf(observation)};
    keyOf(observation.target).definitions.push_back(std::move(definition));
}

void KeyList::addMeaning(const Observation& observation) {
    const FindingPlace place = placeOf(observation.steps[0].place);
    for (KeyDefinition& definition : keyOf(observation.target).definitions) {
        if (definition.place == place) {
            definition.target = observation.detail;
            definition.text = withSingleBlanks(observation.reason);
        }
    }
}

void KeyList::addUse(const Observation& observation) {
    if ((observation.flags & kArtefact) != 0) {
        return;
    }
    const ObservedPlace& place = observation.steps[0].place;
    std::string keyAndPlace = observation.target;
    keyAndPlace.append("\n").append(place.file ? place.file : "");
    keyAndPlace.append("\n").append(std::to_string(place.line));
    keyAndPlace.append("\n").append(std::to_string(place.column));
    if (seenUses_.insert(std::move(keyAndPlace)).second) {
        keyOf(observation.target).uses.push_back(placeOf(place));
    }
}

void KeyList::finish() {
    for (ListedKey& key : keys_) {
        sortByPlace(key.definitions);
        std::sort(key.uses.begin(), key.uses.end(), comesBefore);
    }
    std::stable_partition(keys_.begin(), keys_.end(),
                          [](const ListedKey& key) { return !key.definitions.empty(); });
    for (std::size_t index = 0; index < keys_.size(); ++index) {
        index_[keys_[index].name] = index;
    }
}

const ListedKey* KeyList::find(const std::string& name) const {
    const auto known = index_.find(name);
    return known == index_.end() ? nullptr : &keys_[known->second];
}

std::vector<std::string> KeyList::definedNames() const {
    std::vector<std::string> names;
    for (const ListedKey& key : keys_) {
        if (!key.definitions.empty()) {
            names.push_back(key.name);
        }
    }
    return names;
}

std::vector<std::string> KeyList::chainOf(const ListedKey& key) const {
    std::vector<std::string> chain;
    std::unordered_set<std::string> seen{key.name};
    const KeyDefinition* definition = key.effective();
    while (definition && !definition->keyref.empty()) {
        chain.push_back(definition->keyref);
        const ListedKey* const next =
            seen.insert(definition->keyref).second ? find(definition->keyref) : nullptr;
        definition = next ? next->effective() : nullptr;
    }
    return chain;
}

}  // namespace marrowpress
