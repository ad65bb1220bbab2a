#include "findings/collector.h"

#include <optional>

#include "findings/catalogue.h"
#include "findings/file_hints.h"
#include "findings/shown_path.h"
#include "findings/wording.h"

namespace marrowpress {
namespace {

bool isOf(const Observation& fault, FaultCode code) {
    return fault.code == static_cast<std::uint32_t>(code);
}

}  // namespace

void FindingCollector::observe(const Observation& observation) {
    if (observation.kind == ObservationKind::kFault) {
        addFault(observation);
    } else {
        facts_.take(observation);
    }
}

void FindingCollector::add(Finding finding) {
    const auto severity = severities_.find(finding.id);
    if (severity != severities_.end()) {
        finding.severity = severity->second;
    }
    list_.add(std::move(finding));
}

void FindingCollector::addFault(const Observation& fault) {
    if (isOf(fault, FaultCode::kNoEffect)) {
        addNoEffect(fault);
        return;
    }
    if (belongsToOther(fault)) {
        return;
    }
    std::optional<Finding> finding = faults_.findingOf(fault);
    if (!finding) {
        return;
    }
    const bool isTitle = isOf(fault, FaultCode::kNavtitleNoFileName);
    if (isTitle || isOf(fault, FaultCode::kCannotWrite)) {
        std::string path = isTitle ? fault.detail : fault.target;
        if (unwritten_.emplace(path, std::move(*finding)).second) {
            unwrittenOrder_.push_back(std::move(path));
        }
        return;
    }
    add(std::move(*finding));
}

/// Whether the lines of a file that could not be written, or then not be read back, go with a
/// finding that names the cause.
bool FindingCollector::belongsToOther(const Observation& fault) {
    if (!isOf(fault, FaultCode::kCannotWrite) && !isOf(fault, FaultCode::kCannotRead)) {
        return false;
    }
    const auto cause = unwritten_.find(fault.target);
    if (cause == unwritten_.end()) {
        return false;
    }
    std::optional<std::string>& hostText = cause->second.hostText;
    hostText = hostText.value_or(std::string()) + fault.line;
    return true;
}

/// Once for each kind and file, with its count.
void FindingCollector::addNoEffect(const Observation& fault) {
    std::optional<Finding> finding = faults_.findingOf(fault);
    if (!finding || finding->isArtefact) {
        return;
    }
    KindAndFile kindAndFile(finding->target, finding->place.file);
    const auto known = noEffects_.find(kindAndFile);
    if (known != noEffects_.end()) {
        ++known->second.count;
        return;
    }
    noEffectOrder_.push_back(kindAndFile);
    noEffects_.emplace(std::move(kindAndFile), NoEffectCount{std::move(*finding), 1});
}

void FindingCollector::finish() {
    for (const std::string& path : unwrittenOrder_) {
        add(std::move(unwritten_.at(path)));
    }
    unwrittenOrder_.clear();
    addSameFiles();
    for (const KindAndFile& kindAndFile : noEffectOrder_) {
        NoEffectCount& noEffect = noEffects_.at(kindAndFile);
        noEffect.first.text = noEffectText(kindAndFile.first, noEffect.count);
        noEffect.first.isPerFile = true;
        add(std::move(noEffect.first));
    }
    noEffectOrder_.clear();
}

void FindingCollector::addSameFiles() {
    std::vector<std::string> paths;
    std::map<std::string, FindingPlace> references;
    for (const DocumentFact& document : facts_.documents()) {
        paths.push_back(document.path);
        references.emplace(document.path, document.reference);
    }
    for (const SameFile& same : findSameFiles(paths)) {
        Finding finding;
        finding.id = "MP214";
        finding.severity = *defaultSeverity(finding.id);
        finding.place = references.at(same.path);
        if (finding.place.file.empty()) {
            finding.place.file = same.path;
        }
        finding.target = same.path;
        finding.text = twoSpellingsText(shownPath(same.path, context_.currentFolder),
                                        shownPath(same.earlier, context_.currentFolder));
        finding.hint = twoSpellingsHint(shownPath(same.earlier, context_.currentFolder));
        finding.profiles = context_.profiles;
        add(std::move(finding));
    }
}

}  // namespace marrowpress
