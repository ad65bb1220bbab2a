#include "application/run_observer.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "application/connection.h"
#include "application/host_operations.h"
#include "dom/attributes.h"
#include "dom/copies.h"
#include "dom/document_path.h"
#include "dom/nodes.h"
#include "support/hrefs.h"
#include "support/text.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

constexpr std::size_t kMostFaults = 100000;

std::unique_ptr<RunObserver>& requestObserver() {
    static std::unique_ptr<RunObserver> observer;
    return observer;
}

std::string tagNameOf(const DOMElement* element) {
    return element ? toUtf8(domText(element->getTagName())) : std::string();
}

/// The name of an element in the table of those with an id.
std::u16string bearerName(std::u16string_view containerId, std::u16string_view id) {
    return std::u16string(containerId).append(u"/").append(id);
}

/// Adds each element with an id by that alone, by that within each element around it that has one,
/// and by that within ".".
template <class TagNames>
void gatherBearers(const xercesc::DOMDocument& document, TagNames& tagNames) {
    DOMElement* const root = document.getDocumentElement();
    for (DOMElement* element = root; element; element = nextInSubtree(element, *root)) {
        const std::u16string_view id = attributeView(*element, u"id");
        if (id.empty()) {
            continue;
        }
        const std::u16string tagName(domText(element->getTagName()));
        tagNames.try_emplace(bearerName({}, id), tagName);
        tagNames.try_emplace(bearerName(u".", id), tagName);
        for (const DOMElement* around = asElement(element->getParentNode()); around;
             around = asElement(around->getParentNode())) {
            const std::u16string_view containerId = attributeView(*around, u"id");
            if (!containerId.empty()) {
                tagNames.try_emplace(bearerName(containerId, id), tagName);
            }
        }
    }
}

std::vector<SourceStep> stepsTo(const ObservedFault& fault, const SourcePlaces& places) {
    if (!fault.element) {
        return places.stepsTo(fault.place);
    }
    std::vector<SourceStep> steps = places.stepsTo(*fault.element);
    if (fault.place.file != 0) {
        const CopyCause cause = causeOf(*fault.element);
        steps.front().attribute = cause.attribute;
        steps.front().target = cause.target;
        steps.insert(steps.begin(), {fault.place, nullptr, {}});
    }
    return steps;
}

}  // namespace

RunObserver* RunObserver::existing() noexcept {
    return requestObserver().get();
}

RunObserver* RunObserver::existingForReferences() noexcept {
    RunObserver* const observer = existing();
    return observer && observer->references_ ? observer : nullptr;
}

void RunObserver::begin() {
    const QsApiInterfacesC* const host = QsApiInterfacesC::connected();
    if (host && host->observer) {
        SourcePlaces::begin();
        requestObserver() =
            std::make_unique<RunObserver>(host->observer.get(), host->referenceObserver.get());
    }
}

void RunObserver::end() noexcept {
    requestObserver().reset();
    SourcePlaces::end();
}

void RunObserver::phase(const char* name) {
    sendAt(nullptr, ObservationKind::kPhase, 0, {.target = name});
}

void RunObserver::documentRead(std::u16string_view path, std::u16string_view rootName,
                               DocumentGrammar grammar, const Element* reference) {
    if (grammar != DocumentGrammar::kOwn) {
        filesWithoutDtd_.emplace(path);
    }
    sendAt(reference, ObservationKind::kDocumentRead, static_cast<std::uint32_t>(grammar),
           {.element = toUtf8(rootName), .target = toUtf8(path)});
}

void RunObserver::documentUnread(std::u16string_view path, std::u16string_view reason,
                                 const Element* reference) {
    unreadFiles_.emplace(path);
    sendAt(reference, ObservationKind::kDocumentUnread, 0,
           {.element = tagNameOf(reference), .target = toUtf8(path), .reason = toUtf8(reason)});
}

void RunObserver::keyDefinition(std::u16string_view key, std::u16string_view href, KeyState state,
                                const Element& definition) {
    sendAt(&definition, ObservationKind::kKeyDefinition, static_cast<std::uint32_t>(state),
           {.element = tagNameOf(&definition),
            .target = toUtf8(key),
            .detail = toUtf8(href),
            .reason = toUtf8(attributeView(definition, u"keyref"))});
}

void RunObserver::keyMeaning(std::u16string_view key, std::u16string_view href,
                             std::u16string_view text, const Element& definition) {
    sendReference(&definition, ObservationKind::kKeyMeaning, 0,
                  {.target = toUtf8(key), .detail = toUtf8(href), .reason = toUtf8(text)});
}

void RunObserver::keyReference(std::u16string_view key, const Element& element, bool isLeftOut) {
    sendReference(&element, ObservationKind::kKeyReference, 0,
                  {.element = tagNameOf(&element), .target = toUtf8(key)},
                  isLeftOut ? kArtefact : 0);
}

void RunObserver::fileReference(ReferenceKind kind, std::u16string_view path,
                                const Element& element) {
    sendReference(&element, ObservationKind::kFileReference, static_cast<std::uint32_t>(kind),
                  {.element = tagNameOf(&element), .target = toUtf8(path)});
}

void RunObserver::entity(std::u16string_view path, std::u16string_view namedBy) {
    // No path holds a line end.
    const bool isNew = entities_.insert(std::u16string(path).append(u"\n").append(namedBy)).second;
    if (isNew) {
        const bool isOwn = isOwnFile(std::u16string(namedBy));
        sendReference(nullptr, ObservationKind::kEntity, 0,
                      {.target = toUtf8(path), .detail = isOwn ? std::string() : toUtf8(namedBy)});
    }
}

void RunObserver::topic(std::u16string_view path, const Element& reference) {
    sendAt(&reference, ObservationKind::kTopic, 0,
           {.element = tagNameOf(&reference), .target = toUtf8(path)});
}

void RunObserver::component(std::u16string_view path, std::u16string_view source,
                            const Element& reference) {
    sendAt(&reference, ObservationKind::kComponent, 0,
           {.element = tagNameOf(&reference), .target = toUtf8(path), .detail = toUtf8(source)});
}

void RunObserver::conditionValue(std::u16string_view attribute, std::u16string_view value,
                                 const Element& element) {
    // No attribute's name holds a blank.
    const bool isNew =
        conditionValues_.insert(std::u16string(attribute).append(u" ").append(value)).second;
    if (isNew) {
        sendAt(
            &element, ObservationKind::kConditionValue, 0,
            {.element = tagNameOf(&element), .target = toUtf8(attribute), .detail = toUtf8(value)});
    }
}

void RunObserver::excluded(const Element& element, std::u16string_view target,
                           std::u16string_view attribute) {
    sendAt(&element, ObservationKind::kExcluded, 0,
           {.element = tagNameOf(&element), .target = toUtf8(target), .detail = toUtf8(attribute)});
}

void RunObserver::outputWritten(std::u16string_view path) {
    sendAt(nullptr, ObservationKind::kOutputWritten, 0, {.target = toUtf8(path)});
}

void RunObserver::runFailed(std::string_view reason) {
    sendAt(nullptr, ObservationKind::kRunFailed, 0, {.reason = std::string(reason)});
}

void RunObserver::fault(const ObservedFault& fault) {
    const bool tellsMissingFile = fault.code == FaultCode::kCannotRead ||
                                  fault.code == FaultCode::kReferencedFileNotFound ||
                                  fault.code == FaultCode::kPathIsCut;
    if (tellsMissingFile && fault.element) {
        withoutFile_[SourcePlaces::existing()->placeOf(*fault.element)].push_back(fault.element);
    }
    if (faults_.size() >= kMostFaults) {
        ++droppedFaults_;
        return;
    }
    // The way is taken now: what refers may have lost its attributes, or its place, by the end.
    faults_.push_back({fault.code,
                       fault.element,
                       fault.isArtefact,
                       fault.outlivesElement,
                       {fault.element ? tagNameOf(fault.element) : toUtf8(fault.elementName),
                        toUtf8(targetOf(fault)), toUtf8(inSourceTerms(fault.detail)),
                        toUtf8(fault.reason), std::string(fault.line)},
                       stepsTo(fault, *SourcePlaces::existing()),
                       fault.related});
}

bool RunObserver::hasToldMissingFile(const Element& element,
                                     const std::function<bool(const Element&)>& counts) const {
    const auto told = withoutFile_.find(SourcePlaces::existing()->placeOf(element));
    return told != withoutFile_.end() &&
           std::any_of(told->second.begin(), told->second.end(),
                       [&counts](const Element* copy) { return counts(*copy); });
}

/// The target in source terms. A ring has one name, by whichever of its references it is told.
std::u16string RunObserver::targetOf(const ObservedFault& fault) {
    std::u16string target = inSourceTerms(fault.target);
    if (fault.code != FaultCode::kConrefLoop) {
        return target;
    }
    std::vector<SourcePlace> ring = fault.related;
    std::sort(ring.begin(), ring.end());
    return ringTargets_.try_emplace(std::move(ring), target).first->second;
}

const DOMElement& RunObserver::writerOf(const Element& element,
                                        std::u16string_view attribute) const {
    const Element* writer = &element;
    auto taken = takenAttributes_.find({writer, attribute});
    while (taken != takenAttributes_.end() && taken->second != &element) {
        writer = taken->second;
        taken = takenAttributes_.find({writer, attribute});
    }
    return *writer;
}

std::u16string_view RunObserver::sourceFileOf(std::u16string_view newId) const {
    const auto source = sourceTopics_.find(newId);
    return source == sourceTopics_.end() ? std::u16string_view() : splitHref(source->second).path;
}

/// `target` by the path and the id that an author knows, where it is a topic of the output.
std::u16string RunObserver::inSourceTerms(std::u16string_view target) const {
    const HrefParts parts = splitHref(target);
    const auto source = sourceTopics_.find(parts.topicId);
    if (source == sourceTopics_.end()) {
        return std::u16string(target);
    }
    std::u16string named = source->second;
    if (!parts.elementId.empty()) {
        named.append(u"/").append(parts.elementId);
    }
    return named;
}

void RunObserver::finish(const std::function<bool(const Element&)>& isPublished) {
    for (const PendingFault& fault : faults_) {
        const bool isArtefact =
            fault.isArtefact || (fault.element && !fault.outlivesElement &&
                                 (!isPublished(*fault.element) || isLeftOutOfPrint(fault)));
        send(ObservationKind::kFault, static_cast<std::uint32_t>(fault.code), fault.texts,
             fault.steps, isArtefact ? kArtefact : 0, fault.related);
    }
    faults_.clear();
    if (droppedFaults_ > 0) {
        sendAt(nullptr, ObservationKind::kFaultsDropped, static_cast<std::uint32_t>(droppedFaults_),
               {});
    }
}

/// Whether a missing file is told at a reference that is not printed. A map that is not printed is
/// read all the same, and so all other faults count.
bool RunObserver::isLeftOutOfPrint(const PendingFault& fault) const {
    const bool isOfMissingFile =
        fault.code == FaultCode::kReferencedFileNotFound || fault.code == FaultCode::kPathIsCut;
    return isOfMissingFile && isLeftOutOfPrint_ && isLeftOutOfPrint_(*fault.element);
}

std::u16string_view RunObserver::bearerOf(const xercesc::DOMDocument& document,
                                          std::u16string_view id, std::u16string_view containerId) {
    if (containerId.empty() && filesWithoutDtd_.contains(documentPath(document))) {
        return {};
    }
    const auto [entry, isNew] = bearers_.try_emplace(&document);
    if (isNew) {
        gatherBearers(document, entry->second);
    }
    const auto bearer = entry->second.find(bearerName(containerId, id));
    return bearer == entry->second.end() ? std::u16string_view() : bearer->second;
}

void RunObserver::sendAt(const Element* element, ObservationKind kind, std::uint32_t code,
                         const Texts& texts) {
    send(kind, code, texts,
         element ? SourcePlaces::existing()->stepsTo(*element) : std::vector<SourceStep>(1));
}

void RunObserver::sendReference(const Element* element, ObservationKind kind, std::uint32_t code,
                                const Texts& texts, std::uint32_t flags) {
    const SourcePlace place = element ? SourcePlaces::existing()->placeOf(*element) : SourcePlace();
    const ObservedStep step{observed(place), "", ""};
    Observation observation = observationOf(kind, code, flags, texts);
    observation.steps = &step;
    observation.stepCount = 1;
    guardHostCall([&] { references_->observeReference(&observation); });
}

/// Without a place. `texts` must outlive it.
Observation RunObserver::observationOf(ObservationKind kind, std::uint32_t code,
                                       std::uint32_t flags, const Texts& texts) {
    return {kind,
            code,
            flags,
            texts.element.c_str(),
            texts.target.c_str(),
            texts.detail.c_str(),
            texts.reason.c_str(),
            texts.line.c_str(),
            nullptr,
            0,
            nullptr,
            0};
}

void RunObserver::send(ObservationKind kind, std::uint32_t code, const Texts& texts,
                       const std::vector<SourceStep>& steps, std::uint32_t flags,
                       const std::vector<SourcePlace>& related) {
    std::vector<std::string> names;
    names.reserve(2 * steps.size());
    std::vector<ObservedStep> observedSteps;
    observedSteps.reserve(steps.size());
    for (const SourceStep& step : steps) {
        names.push_back(step.attribute ? toUtf8(domText(step.attribute)) : std::string());
        names.push_back(toUtf8(inSourceTerms(step.target)));
        observedSteps.push_back(
            {observed(step.place), names[names.size() - 2].c_str(), names.back().c_str()});
    }
    if (observedSteps.empty()) {
        observedSteps.push_back({observed({}), "", ""});
    }
    std::vector<ObservedPlace> observedRelated;
    observedRelated.reserve(related.size());
    for (const SourcePlace& place : related) {
        observedRelated.push_back(observed(place));
    }
    Observation observation = observationOf(kind, code, flags, texts);
    observation.steps = observedSteps.data();
    observation.stepCount = static_cast<std::uint32_t>(observedSteps.size());
    observation.related = observedRelated.data();
    observation.relatedCount = static_cast<std::uint32_t>(observedRelated.size());
    guardHostCall([&] { observer_->observe(&observation); });
}

ObservedPlace RunObserver::observed(const SourcePlace& place) {
    return {place.file == 0 ? nullptr : pathOf(place), place.line, place.column};
}

/// The path of the place's file in UTF-8, converted once.
const char* RunObserver::pathOf(const SourcePlace& place) {
    if (paths_.size() <= place.file) {
        paths_.resize(place.file + 1);
    }
    std::string& path = paths_[place.file];
    if (path.empty()) {
        path = toUtf8(SourcePlaces::existing()->filePath(place.file));
    }
    return path.c_str();
}

}  // namespace marrowpress
