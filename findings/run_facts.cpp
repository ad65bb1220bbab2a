#include "findings/run_facts.h"

#include <utility>

#include "findings/document_types.h"
#include "findings/profile.h"

namespace marrowpress {
namespace {

FindingPlace firstPlaceOf(const Observation& observation) {
    return observation.stepCount > 0 ? placeOf(observation.steps[0].place) : FindingPlace();
}

/// The path in front of a fragment.
std::string pathOf(const std::string& target) {
    return target.substr(0, target.rfind('#'));
}

/// Of several definitions the one that is kept: the higher, the more it says.
int weightOf(KeyState state) {
    switch (state) {
        case KeyState::kEffective:
            return 3;
        case KeyState::kExcluded:
            return 2;
        case KeyState::kLost:
            return 1;
        case KeyState::kShadowed:
            break;
    }
    return 0;
}

}  // namespace

FindingPlace placeOf(const ObservedPlace& place) {
    return {place.file ? place.file : "", place.line, place.column};
}

std::vector<FindingStep> wayOf(const Observation& observation) {
    std::vector<FindingStep> way;
    for (std::uint32_t index = 1; index < observation.stepCount; ++index) {
        const ObservedStep& step = observation.steps[index];
        std::string what = step.attribute;
        if (*step.target) {
            what.append(" ").append(step.target);
        }
        way.push_back({placeOf(step.place), std::move(what)});
    }
    return way;
}

void RunFacts::take(const Observation& observation) {
    switch (observation.kind) {
        case ObservationKind::kDocumentRead:
            takeDocument(observation);
            break;
        case ObservationKind::kKeyDefinition:
            takeKey(observation);
            break;
        case ObservationKind::kTopic:
            ++topicCount_;
            break;
        case ObservationKind::kComponent:
            components_.push_back({observation.target, observation.detail,
                                   firstPlaceOf(observation), observation.element});
            break;
        case ObservationKind::kConditionValue:
            conditionValues_.emplace(observation.target, observation.detail);
            break;
        case ObservationKind::kExcluded:
            excluded_.insert(pathOf(observation.target));
            break;
        case ObservationKind::kFaultsDropped:
            droppedFaults_ += observation.code;
            break;
        case ObservationKind::kRunFailed:
            failure_ = observation.reason;
            break;
        case ObservationKind::kPhase:
        case ObservationKind::kDocumentUnread:
        case ObservationKind::kOutputWritten:
        case ObservationKind::kFault:
        case ObservationKind::kKeyMeaning:
        case ObservationKind::kKeyReference:
        case ObservationKind::kFileReference:
        case ObservationKind::kEntity:
            break;
    }
}

void RunFacts::takeDocument(const Observation& observation) {
    const std::size_t index = documents_.size();
    if (!documentIndex_.emplace(observation.target, index).second) {
        return;
    }
    const auto grammar = static_cast<DocumentGrammar>(observation.code);
    documents_.push_back(
        {observation.target, observation.element, grammar, firstPlaceOf(observation)});
    if (grammar == DocumentGrammar::kOwn) {
        return;
    }
    const bool lostReferences = isMap(observation.element, observation.target);
    // Without a doctype it need not be one of DITA's, and a profile needs none.
    const std::string_view rootName = observation.element;
    const bool isDita = rootTypeOf(rootName) ||
                        (grammar != DocumentGrammar::kNoDoctype && rootName != kProfileRoot);
    if (lostReferences && !mapWithoutDtd_) {
        mapWithoutDtd_ = index;
    } else if (!lostReferences && isDita && !topicWithoutDtd_) {
        topicWithoutDtd_ = index;
    }
}

void RunFacts::takeKey(const Observation& observation) {
    const std::string key = observation.target;
    KeyFact fact{static_cast<KeyState>(observation.code), firstPlaceOf(observation),
                 observation.element, observation.detail};
    if (fact.state == KeyState::kEffective) {
        keys_.push_back(key);
        // Other elements that define a key may bring their topic into the output as well.
        if (fact.element == "keydef") {
            keyTargets_.insert(pathOf(fact.href));
        }
    }
    const auto known = keyFacts_.find(key);
    if (known == keyFacts_.end()) {
        keyFacts_.emplace(key, std::move(fact));
    } else if (weightOf(fact.state) > weightOf(known->second.state)) {
        known->second = std::move(fact);
    }
}

const KeyFact* RunFacts::keyFact(const std::string& key) const {
    const auto known = keyFacts_.find(key);
    return known == keyFacts_.end() ? nullptr : &known->second;
}

const DocumentFact* RunFacts::document(const std::string& path) const {
    const auto known = documentIndex_.find(path);
    return known == documentIndex_.end() ? nullptr : &documents_[known->second];
}

const DocumentFact* RunFacts::mapWithoutDtd() const {
    return mapWithoutDtd_ ? &documents_[*mapWithoutDtd_] : nullptr;
}

const DocumentFact* RunFacts::documentWithoutDtd() const {
    const std::optional<std::size_t> index = mapWithoutDtd_ ? mapWithoutDtd_ : topicWithoutDtd_;
    return index ? &documents_[*index] : nullptr;
}

bool RunFacts::isWithoutDtd(const std::string& path) const {
    const DocumentFact* const fact = document(path);
    return fact && fact->grammar != DocumentGrammar::kOwn;
}

}  // namespace marrowpress
