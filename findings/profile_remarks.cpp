#include "findings/profile_remarks.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

namespace marrowpress {
namespace {

using Kind = ProfileRemark::Kind;

constexpr std::string_view kInclude = "include";
constexpr std::string_view kExclude = "exclude";

/// The attributes that a default of exclude covers.
constexpr std::array<std::string_view, 5> kDefaultAttributes{"audience", "props", "platform",
                                                             "product", "otherprops"};

/// What DITA 1.3 knows in a profile: an element, and its attributes with a blank behind each.
struct KnownElement {
    std::string_view name;
    std::string_view attributes;
    bool hasAction = false;
    bool hasEffect = true;
};

constexpr std::array kKnownElements{
    KnownElement{kProfileRoot, ""},
    KnownElement{"style-conflict", "foreground-conflict-color background-conflict-color ", false,
                 false},
    KnownElement{kRuleElement, "att val action color backcolor style outputclass ", true},
    KnownElement{"revprop", "val action changebar color backcolor style outputclass ", true, false},
    KnownElement{"startflag", "imageref ", false, false},
    KnownElement{"endflag", "imageref ", false, false},
    KnownElement{"alt-text", ""},
};

const KnownElement* findKnown(std::string_view name) {
    const auto* const found =
        std::find_if(kKnownElements.begin(), kKnownElements.end(),
                     [name](const KnownElement& known) { return known.name == name; });
    return found == kKnownElements.end() ? nullptr : found;
}

/// Attributes with a prefix are not DITA's to know: "xml:lang", the place of a schema.
bool knowsAttribute(const KnownElement& element, std::string_view attribute) {
    if (attribute.find(':') != std::string_view::npos) {
        return true;
    }
    std::string_view rest = element.attributes;
    while (!rest.empty()) {
        const std::size_t end = rest.find(' ');
        if (rest.substr(0, end) == attribute) {
            return true;
        }
        rest.remove_prefix(end + 1);
    }
    return false;
}

bool isWithoutEffect(std::string_view action) {
    return action == "flag" || action == "passthrough";
}

bool isKnownAction(std::string_view action) {
    return action == kInclude || action == kExclude || isWithoutEffect(action);
}

/// Goes over the elements of a profile.
class Inspection {
public:
    void inspect(const ProfileElement& element) {
        const KnownElement* const known = findKnown(element.name);
        if (!known) {
            remarks_.push_back({Kind::kUnknownElement, element.place, element.name, {}, {}});
            return;
        }
        inspectAttributes(element, *known);
        if (known->hasAction) {
            inspectAction(element);
        }
        if (!known->hasEffect) {
            noteIdle(element, element.name);
        }
    }

    std::vector<ProfileRemark> finish() {
        remarks_.insert(remarks_.end(), idle_.begin(), idle_.end());
        return std::move(remarks_);
    }

private:
    void inspectAttributes(const ProfileElement& element, const KnownElement& known) {
        for (const auto& [name, value] : element.attributes) {
            if (!knowsAttribute(known, name)) {
                remarks_.push_back(
                    {Kind::kUnknownAttribute, element.place, element.name, name, value});
            }
        }
    }

    void inspectAction(const ProfileElement& element) {
        const std::string action(element.valueOf("action"));
        if (!isKnownAction(action)) {
            remarks_.push_back(
                {Kind::kUnknownAction, element.place, element.name, "action", action});
        } else if (isWithoutEffect(action) && element.name == kRuleElement) {
            noteIdle(element, action);
        }
    }

    void noteIdle(const ProfileElement& element, const std::string& name) {
        const auto known =
            std::find_if(idle_.begin(), idle_.end(),
                         [&name](const ProfileRemark& remark) { return remark.name == name; });
        if (known == idle_.end()) {
            idle_.push_back({Kind::kNoEffect, element.place, element.name, name, {}});
        } else {
            ++known->count;
        }
    }

    std::vector<ProfileRemark> remarks_;
    std::vector<ProfileRemark> idle_;
};

/// Which rules count, told as the module reads them: the default first, then the rules for whole
/// attributes, then those for values.
class RuleReading {
public:
    /// `rules` must stay for as long as what is given is used.
    explicit RuleReading(const std::vector<ProfileRule>& rules) {
        for (const ProfileRule& rule : rules) {
            isExcludedByDefault_ |=
                rule.attribute.empty() && rule.value.empty() && rule.action == kExclude;
        }
        for (const ProfileRule& rule : rules) {
            if (isRule(rule) && rule.value.empty()) {
                readAttributeRule(rule);
            }
        }
        for (const ProfileRule& rule : rules) {
            if (isRule(rule) && !rule.value.empty()) {
                readValueRule(rule);
            }
        }
        std::sort(counting_.begin(), counting_.end());
    }

    /// In their order.
    const std::vector<const ProfileRule*>& counting() const { return counting_; }

private:
    static bool isRule(const ProfileRule& rule) {
        return !rule.attribute.empty() && (rule.action == kInclude || rule.action == kExclude);
    }

    std::string_view defaultAction() const { return isExcludedByDefault_ ? kExclude : kInclude; }

    /// What becomes of the values of an attribute without any rule.
    std::string_view actionWithoutRules(std::string_view attribute) const {
        const bool isCovered = std::find(kDefaultAttributes.begin(), kDefaultAttributes.end(),
                                         attribute) != kDefaultAttributes.end();
        return isCovered ? defaultAction() : kInclude;
    }

    void readAttributeRule(const ProfileRule& rule) {
        const std::string_view opposite = rule.action == kExclude ? kInclude : kExclude;
        const bool isFirst = valueAction_.emplace(rule.attribute, opposite).second;
        if (isFirst && rule.action != actionWithoutRules(rule.attribute)) {
            counting_.push_back(&rule);
        }
    }

    void readValueRule(const ProfileRule& rule) {
        auto known = valueAction_.find(rule.attribute);
        if (known == valueAction_.end() && rule.action != defaultAction()) {
            known = valueAction_.emplace(rule.attribute, rule.action).first;
        }
        const bool counts = known != valueAction_.end() && known->second == rule.action;
        if (counts && values_.emplace(rule.attribute, rule.value).second) {
            counting_.push_back(&rule);
        }
    }

    bool isExcludedByDefault_ = false;
    /// For each attribute with a rule, the action of those rules for values that count.
    std::map<std::string_view, std::string_view> valueAction_;
    std::set<std::pair<std::string_view, std::string_view>> values_;
    std::vector<const ProfileRule*> counting_;
};

bool isMet(const ProfileRule& rule, const ConditionValues& met) {
    if (!rule.value.empty()) {
        return met.count({rule.attribute, rule.value}) > 0;
    }
    const auto first = met.lower_bound({rule.attribute, std::string()});
    return first != met.end() && first->first == rule.attribute;
}

}  // namespace

bool isProfile(const Profile& profile) {
    return profile.root().name == kProfileRoot;
}

std::vector<ProfileRemark> remarksOn(const Profile& profile) {
    if (!isProfile(profile)) {
        return {{Kind::kRootIsNotVal, profile.root().place, profile.root().name, {}, {}}};
    }
    Inspection inspection;
    for (const ProfileElement& element : profile.elements) {
        inspection.inspect(element);
    }
    return inspection.finish();
}

std::vector<ProfileRemark> unmatchedRules(const std::vector<ProfileRule>& rules,
                                          const ConditionValues& met) {
    const RuleReading reading(rules);
    std::vector<ProfileRemark> remarks;
    for (const ProfileRule* const rule : reading.counting()) {
        if (!isMet(*rule, met)) {
            remarks.push_back({Kind::kUnmatchedRule, rule->place, std::string(kRuleElement),
                               rule->attribute, rule->value});
        }
    }
    return remarks;
}

}  // namespace marrowpress
