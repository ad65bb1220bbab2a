#include "runs/profile_findings.h"

#include <utility>

#include "findings/catalogue.h"
#include "findings/profile_remarks.h"
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

}  // namespace

void addProfileFindings(const std::vector<Profile>& profiles, const std::vector<ProfileRule>& rules,
                        FindingCollector& collector) {
    const std::string& folder = collector.context().currentFolder;
    for (const Profile& profile : profiles) {
        for (const ProfileRemark& remark : remarksOn(profile)) {
            collector.add(findingOf(remark, folder));
        }
    }
    const DocumentFact* const lost = collector.facts().documentWithoutDtd();
    for (const ProfileRemark& remark : unmatchedRules(rules, collector.facts().conditionValues())) {
        Finding finding = findingOf(remark, folder);
        if (lost) {
            // It may have lost references, and values that its DTD gives.
            finding.hint = ruleNeedsDtdHint(shownPath(lost->path, folder), lostDtdId(*lost));
        }
        collector.add(std::move(finding));
    }
}

}  // namespace marrowpress
