#include "cli/profile_set.h"

#include <fstream>
#include <utility>
#include <variant>

#include "cli/input_faults.h"
#include "findings/catalogue.h"
#include "findings/profile_merge.h"
#include "findings/shown_path.h"
#include "findings/wording.h"

namespace marrowpress {
namespace {

constexpr std::string_view kUnknownId = "MP207";
constexpr std::string_view kNoEffectId = "MP215";

void describe(Finding& finding, const ProfileRemark& remark, const std::string& shown) {
    switch (remark.kind) {
        case ProfileRemark::Kind::kUnknownElement:
            finding.text = unknownProfileElementText(remark.element);
            finding.hint = profileElementsHint();
            finding.target = remark.element;
            break;
        case ProfileRemark::Kind::kUnknownAttribute:
            finding.text = unknownProfileAttributeText(remark.element, remark.name);
            finding.hint = profileAttributesHint();
            finding.target = remark.name;
            break;
        case ProfileRemark::Kind::kUnknownAction:
            finding.text = unknownProfileActionText(remark.value);
            finding.hint = profileActionsHint();
            finding.target = remark.value;
            break;
        case ProfileRemark::Kind::kRootIsNotVal:
            finding.text = profileRootText(shown, remark.element);
            finding.hint = profileRootHint();
            finding.target = remark.element;
            break;
        case ProfileRemark::Kind::kUnmatchedRule:
            finding.text = remark.value.empty() ? unmatchedAttributeText(remark.name)
                                                : unmatchedRuleText(remark.name, remark.value);
            finding.hint = unmatchedRuleHint();
            finding.target = remark.value.empty() ? remark.name : remark.name + "=" + remark.value;
            break;
        case ProfileRemark::Kind::kNoEffect:
            finding.text = noEffectText(remark.name, remark.count);
            finding.hint = noEffectHint(remark.name);
            finding.target = remark.name;
            finding.isPerFile = true;
            break;
    }
}

Finding findingOf(const ProfileRemark& remark, const std::string& currentFolder) {
    Finding finding;
    finding.id = remark.kind == ProfileRemark::Kind::kNoEffect ? kNoEffectId : kUnknownId;
    finding.severity = *defaultSeverity(finding.id);
    finding.place = remark.place;
    finding.element = remark.element;
    finding.profiles = {remark.place.file};
    describe(finding, remark, shownPath(remark.place.file, currentFolder));
    return finding;
}

/// A file that is done without, though the client never sees that it is missing.
Finding unusableFinding(const NamedPath& file, const ProfileFault& fault) {
    const std::string path = file.path.string();
    Finding finding;
    finding.id = "MP106";
    finding.severity = Severity::kWarning;
    finding.place = fault.place;
    finding.place.file = path;
    finding.target = path;
    finding.text = cannotReadText(file.shown, fault.reason);
    finding.hint = withoutFilterHint();
    finding.profiles = {path};
    return finding;
}

}  // namespace

ProfileSet::ProfileSet(const std::vector<NamedPath>& files, bool isOptional) {
    for (const NamedPath& file : files) {
        names_.push_back(file.path.string());
        read(file, isOptional);
    }
    if (files.size() == 1) {
        file_ = files.front().path;
        unusable_.clear();  // the client tells of it
        if (!profiles_.empty()) {
            rules_ = profiles_.front().rules;
        }
    } else if (!fault_ && !files.empty()) {
        merge();
    }
}

void ProfileSet::read(const NamedPath& file, bool isOptional) {
    std::variant<Profile, ProfileFault> read = readProfile(file.path.string());
    if (const auto* const failure = std::get_if<ProfileFault>(&read)) {
        if (isOptional) {
            unusable_.push_back(unusableFinding(file, *failure));
        } else if (!fault_) {
            fault_ = profileFaultText(file.argument, file.shown, *failure);
        }
        return;
    }
    auto& profile = std::get<Profile>(read);
    if (!isOptional && !fault_) {
        fault_ = findProfileRootFault(file.argument, file.shown, profile);
    }
    profiles_.push_back(std::move(profile));
}

void ProfileSet::merge() {
    if (profiles_.empty()) {
        return;
    }
    MergedProfile merged = mergeProfiles(profiles_);
    rules_ = std::move(merged.rules);
    scratch_ = std::make_unique<ScratchFolder>();
    file_ = scratch_->path() / "filters.ditaval";
    std::ofstream out(*file_, std::ios::binary);
    out << merged.text;
    out.close();
    if (!out) {
        throw ScratchError("cannot write " + file_->string());
    }
}

void ProfileSet::addFindings(FindingCollector& collector) const {
    const std::string& folder = collector.context().currentFolder;
    for (const Finding& finding : unusable_) {
        collector.add(finding);
    }
    for (const Profile& profile : profiles_) {
        for (const ProfileRemark& remark : remarksOn(profile)) {
            collector.add(findingOf(remark, folder));
        }
    }
    const DocumentFact* const lost = collector.facts().documentWithoutDtd();
    for (const ProfileRemark& remark :
         unmatchedRules(rules_, collector.facts().conditionValues())) {
        Finding finding = findingOf(remark, folder);
        if (lost) {
            // It may have lost references, and values that its DTD gives.
            finding.hint = ruleNeedsDtdHint(shownPath(lost->path, folder), lostDtdId(*lost));
        }
        collector.add(std::move(finding));
    }
}

}  // namespace marrowpress
