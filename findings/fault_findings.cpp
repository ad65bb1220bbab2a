#include "findings/fault_findings.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "findings/catalogue.h"
#include "findings/document_types.h"
#include "findings/finding_lines.h"
#include "findings/nearest.h"
#include "findings/shown_path.h"
#include "findings/wording.h"
#include "marrowpress/output_names.h"

namespace marrowpress {
namespace {

/// A target that leads into a file.
struct TargetParts {
    std::string path;
    std::string topic;
    std::string element;
};

TargetParts partsOf(const std::string& target) {
    const std::size_t sign = target.rfind('#');
    if (sign == std::string::npos) {
        return {target, {}, {}};
    }
    const std::string fragment = target.substr(sign + 1);
    const std::size_t slash = fragment.find('/');
    return {target.substr(0, sign), fragment.substr(0, slash),
            slash == std::string::npos ? std::string() : fragment.substr(slash + 1)};
}

bool isKeySpaceDoc(std::string_view path) {
    return path.size() > kKeySpaceDocName.size() && path.ends_with(kKeySpaceDocName) &&
           path[path.size() - kKeySpaceDocName.size() - 1] == '/';
}

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

std::size_t numberIn(std::string_view text) {
    std::size_t number = 1;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

}  // namespace

std::string findingId(std::uint32_t code) {
    return "MP" + std::to_string(code);
}

std::string lostDtdId(const DocumentFact& document) {
    return findingId(static_cast<std::uint32_t>(document.grammar == DocumentGrammar::kInvalid
                                                    ? FaultCode::kBreaksDtd
                                                    : FaultCode::kReadWithoutDtd));
}

std::optional<Finding> FaultFindings::findingOf(const Observation& fault) {
    const auto code = static_cast<FaultCode>(fault.code);
    const bool isUndeclared =
        code == FaultCode::kReadWithoutDtd && !*fault.detail && !*fault.reason;
    if (isUndeclared && (!rootTypeOf(fault.element) || isProfile(fault.target))) {
        return std::nullopt;
    }
    Finding finding;
    finding.id = findingId(fault.code);
    finding.severity = defaultSeverity(finding.id).value_or(Severity::kError);
    finding.element = fault.element;
    finding.target = fault.target;
    finding.isArtefact = (fault.flags & kArtefact) != 0;
    finding.profiles = context_.profiles;
    if (*fault.line) {
        finding.hostText = fault.line;
    }
    if (fault.stepCount > 0) {
        finding.place = placeOf(fault.steps[0].place);
    }
    finding.via = wayOf(fault);
    for (std::uint32_t index = 0; index < fault.relatedCount; ++index) {
        FindingPlace place = placeOf(fault.related[index]);
        const bool isKnown =
            place == finding.place ||
            std::find(finding.places.begin(), finding.places.end(), place) != finding.places.end();
        if (!isKnown) {
            finding.places.push_back(std::move(place));
        }
    }
    describe(finding, fault);
    return finding;
}

void FaultFindings::describe(Finding& finding, const Observation& fault) {
    switch (static_cast<FaultCode>(fault.code)) {
        case FaultCode::kKeyNotFound:
            describeKey(finding);
            break;
        case FaultCode::kCannotRead:
            describeUnread(finding, fault);
            break;
        case FaultCode::kCannotWrite:
            describeUnwritten(finding, fault);
            break;
        case FaultCode::kElementInTopicNotFound:
        case FaultCode::kElementNotFound:
            describeElement(finding, fault);
            break;
        case FaultCode::kInvalidConrefEnd:
            finding.text = conrefEndNotBesideText(shown(fault.target), shown(fault.detail));
            finding.hint = conrefEndHint();
            break;
        case FaultCode::kReferencedFileNotFound:
        case FaultCode::kLinkTargetMissing:
            describeMissing(finding);
            break;
        case FaultCode::kReadWithoutDtd:
            describeLostDtd(finding, fault);
            break;
        case FaultCode::kBreaksDtd:
            describeBrokenDtd(finding, fault);
            break;
        case FaultCode::kFragmentNotFound:
            describeFragment(finding, fault);
            break;
        case FaultCode::kConrefLoop:
            describeLoop(finding, fault);
            break;
        case FaultCode::kNoTopic:
            describeNoTopic(finding);
            break;
        case FaultCode::kTopicNotInOutput:
            describeOutside(finding);
            break;
        case FaultCode::kMapReferenceChildren:
            finding.text = droppedChildrenText(shown(fault.target), numberIn(fault.detail));
            finding.hint = droppedChildrenHint();
            break;
        case FaultCode::kKeyScope:
            finding.text = keyScopeText(fault.target);
            finding.hint = keyScopeHint(fault.target);
            break;
        case FaultCode::kNavtitleNoFileName:
            finding.text = navtitleText(fault.target);
            finding.hint = navtitleHint();
            break;
        case FaultCode::kPathIsCut:
            describeCut(finding, fault);
            break;
        case FaultCode::kNoEffect:
            finding.text = noEffectText(fault.target, 1);
            finding.hint = noEffectHint(fault.target);
            break;
        case FaultCode::kConrefOfConref:
            finding.text = conrefOfConrefText(shown(fault.target));
            finding.hint = referDirectlyHint(shown(fault.detail));
            break;
        case FaultCode::kKeyLinkDropped:
            finding.text = keyLinkDroppedText(fault.target);
            finding.hint = keyLinkDroppedHint();
            break;
        case FaultCode::kKeyDefinitionLost:
            finding.text = keyDefinitionLostText(fault.target, shown(fault.detail));
            finding.hint = keyDefinitionTypeHint();
            break;
    }
}

void FaultFindings::describeKey(Finding& finding) {
    const std::string& key = finding.target;
    finding.text = key.empty() ? keyNotNamedText() : keyNotFoundText(key);
    const KeyFact* const fact = facts_.keyFact(key);
    if (!fact) {
        const std::optional<std::string> nearest = nearestName(key, facts_.keys());
        finding.hint = nearest                 ? didYouMeanHint(*nearest)
                       : facts_.keys().empty() ? noKeyDefinedHint()
                                               : defineKeyHint();
        return;
    }
    switch (fact->state) {
        case KeyState::kExcluded:
            finding.hint = keyTakenAwayHint(shownProfiles(), shown(fact->place));
            break;
        case KeyState::kLost:
            finding.hint = keyDefinitionLostHint(shown(fact->place));
            break;
        case KeyState::kEffective:
        case KeyState::kShadowed:
            finding.hint = keyLeadsToItselfHint(shown(fact->place));
            break;
    }
}

void FaultFindings::describeElement(Finding& finding, const Observation& fault) {
    const TargetParts parts = partsOf(finding.target);
    const std::string_view bearer = fault.reason;
    if (facts_.isWithoutDtd(parts.path)) {
        finding.text = parts.element.empty() ? elementNotFoundText(shown(parts.path), parts.topic)
                                             : elementInTopicNotFoundText(
                                                   shown(parts.path), parts.topic, parts.element);
        finding.hint = idsNeedDtdHint(shown(parts.path));
        return;
    }
    if (!bearer.empty() && bearer != fault.detail) {
        finding.text = wrongElementText(shown(finding.target), bearer, fault.detail);
        finding.hint = wrongElementHint(bearer, fault.detail);
    } else {
        finding.text = parts.element.empty() ? elementNotFoundText(shown(parts.path), parts.topic)
                                             : elementInTopicNotFoundText(
                                                   shown(parts.path), parts.topic, parts.element);
        finding.hint = fragmentHint();
    }
}

void FaultFindings::describeUnread(Finding& finding, const Observation& fault) {
    if (finding.target.empty()) {
        finding.text = keyWithoutFileText(finding.via.empty() ? "" : finding.via.front().what);
        return;
    }
    if (isKeySpaceDoc(finding.target)) {
        finding.text = cannotWriteText(shown(folderOf(finding.target)), fault.reason);
        return;
    }
    finding.text = cannotReadText(shown(finding.target), fault.reason);
    if (const std::optional<FileHint> hint = fileHints_.find(finding.target)) {
        finding.hint = hint->isLetterCaseOnly ? otherCaseHint(shown(hint->path))
                                              : didYouMeanHint(shown(hint->path));
    }
    if (context_.isFilterOptional && isProfile(finding.target)) {
        finding.hint = withoutFilterHint();
        finding.severity = Severity::kWarning;
    } else if (finding.place.file == finding.target && finding.place.line != 0) {
        finding.hint = notWellFormedHint();
    }
    if (finding.place.file.empty()) {
        finding.place.file = finding.target;
    }
}

void FaultFindings::describeUnwritten(Finding& finding, const Observation& fault) {
    const std::string path =
        isKeySpaceDoc(finding.target) ? folderOf(finding.target) : finding.target;
    finding.text = cannotWriteText(shown(path), fault.reason);
    finding.hint = notTheResultHint();
    finding.place.file = path;
}

void FaultFindings::describeMissing(Finding& finding) {
    finding.text = fileNotFoundText(shown(finding.target));
    const std::string name = finding.target.substr(finding.target.rfind('/') + 1);
    if (const std::optional<FileHint> hint = fileHints_.find(finding.target)) {
        finding.hint = hint->isLetterCaseOnly ? otherCaseHint(shown(hint->path))
                                              : didYouMeanHint(shown(hint->path));
    } else if (name.starts_with("www.")) {
        finding.hint = webAddressHint(name);
    } else {
        finding.hint = missingFileHint();
    }
}

void FaultFindings::describeLostDtd(Finding& finding, const Observation& fault) const {
    if (isMap(fault.element, finding.target)) {
        finding.severity = Severity::kError;
    }
    if (*fault.detail || *fault.reason) {
        const bool isCatalogAtFault = *fault.detail && !context_.catalogFault.empty();
        finding.text =
            isCatalogAtFault
                ? unusableCatalogText(shown(finding.target), context_.catalogFault, fault.detail)
                : dtdNotFoundText(shown(finding.target), fault.detail, fault.reason);
        std::string catalogs;
        for (const std::string& catalog : context_.catalogs) {
            catalogs.append(catalogs.empty() ? "" : ", ").append(catalog);
        }
        finding.hint = catalogsHint(catalogs);
        return;
    }
    finding.text = noDoctypeText(shown(finding.target));
    if (const RootType* const type = rootTypeOf(fault.element)) {
        finding.hint = doctypeHint(type->root, type->publicId);
    }
}

void FaultFindings::describeBrokenDtd(Finding& finding, const Observation& fault) const {
    finding.text = breaksDtdText(shown(finding.target), fault.reason);
    if (isMap(fault.element, finding.target)) {
        finding.severity = Severity::kError;
        finding.hint = mapWithoutDtdHint();
    } else {
        finding.hint = topicWithoutDtdHint();
    }
}

void FaultFindings::describeFragment(Finding& finding, const Observation& fault) const {
    const TargetParts parts = partsOf(finding.target);
    const std::string file = shown(parts.path);
    if (!parts.element.empty() && !parts.topic.empty()) {
        finding.text = elementInTopicNotFoundText(file, parts.topic, parts.element);
    } else if (isMapFile(parts.path)) {
        finding.text = elementNotFoundText(file, parts.topic);
    } else {
        finding.text = topicNotFoundText(file, parts.topic);
    }
    if (facts_.isWithoutDtd(parts.path)) {
        finding.hint = idsNeedDtdHint(file);
    } else if (*fault.detail) {
        finding.hint = elementIdHint(fault.detail, parts.topic);
    } else {
        finding.hint = fragmentHint();
    }
}

/// In a map a fragment names any element, in all other files a topic.
bool FaultFindings::isMapFile(const std::string& path) const {
    const DocumentFact* const document = facts_.document(path);
    return isMap(document ? document->rootName : std::string(), path);
}

void FaultFindings::describeLoop(Finding& finding, const Observation& fault) const {
    finding.text = conrefLoopText(shown(finding.target), std::max(1U, fault.relatedCount));
    if (*fault.line) {
        finding.hint = cutLoopHint();
    } else {
        finding.hint = fault.relatedCount == 1 ? lostContentHint() : keptConrefHint();
    }
}

void FaultFindings::describeNoTopic(Finding& finding) const {
    finding.text = noTopicText();
    if (facts_.isWithoutDtd(finding.target)) {
        finding.hint = noTopicWithoutDtdHint();
    } else {
        finding.hint = context_.profiles.empty() ? noReferenceHint() : allExcludedHint();
    }
}

void FaultFindings::describeOutside(Finding& finding) const {
    const std::string path = partsOf(finding.target).path;
    finding.text = topicNotInOutputText(shown(path));
    if (facts_.isExcluded(path)) {
        finding.hint = topicExcludedHint(shownProfiles());
    } else if (facts_.isKeyTarget(path)) {
        finding.hint = resourceOnlyHint();
    } else if (const DocumentFact* const map = facts_.mapWithoutDtd()) {
        finding.hint = mapLostReferencesHint(shown(map->path), lostDtdId(*map));
    } else {
        finding.hint = notInMapHint();
    }
}

void FaultFindings::describeCut(Finding& finding, const Observation& fault) const {
    finding.text = pathIsCutText(shown(finding.target), fault.detail);
    finding.hint = pathIsCutHint();
}

bool FaultFindings::isProfile(std::string_view path) const {
    return std::find(context_.profiles.begin(), context_.profiles.end(), path) !=
           context_.profiles.end();
}

std::string FaultFindings::shown(const std::string& path) const {
    return shownPath(path, context_.currentFolder);
}

std::string FaultFindings::shown(const FindingPlace& place) const {
    return placeText(place, context_.currentFolder);
}

std::string FaultFindings::shownProfiles() const {
    std::string names;
    for (const std::string& profile : context_.profiles) {
        names.append(names.empty() ? "" : ", ").append(shown(profile));
    }
    return names;
}

}  // namespace marrowpress
