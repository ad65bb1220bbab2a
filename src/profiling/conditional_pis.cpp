#include "profiling/conditional_pis.h"

#include <algorithm>
#include <array>
#include <xercesc/dom/DOMProcessingInstruction.hpp>

#include "dom/element_walker.h"
#include "support/request_singleton.h"
#include "support/short_cuts.h"
#include "support/text.h"
#include "support/work_counts.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

using xercesc::DOMNode;
using xercesc::DOMNodeFilter;
using xercesc::DOMProcessingInstruction;

constexpr std::size_t kShowAllTokens = 2;
constexpr std::size_t kExpressionTokens = 4;
constexpr std::size_t kTagTokens = 2;

constexpr std::array<std::u16string_view, 6> kSystemConditions{
    u"QS8_TRACK_CHANGES_ADDED",   u"QS8_TRACK_CHANGES_DELETED", u"QS8_SYSTEM_HIDEELEMENT",
    u"QS_PDF_Comments_Highlight", u"QS_PDF_Comments_Underline", u"DITA-Conref"};

constexpr std::array<std::u16string_view, 4> kIgnoredConditions{u"DITA-Comment", u"DITA-Prolog",
                                                                u"domain-ui-d", u"domain-xml-d"};

template <class Names>
bool contains(const Names& names, std::u16string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// `node` as an instruction of the application; null when it is none.
const DOMProcessingInstruction* asInstruction(const DOMNode* node) {
    if (!node || node->getNodeType() != DOMNode::PROCESSING_INSTRUCTION_NODE) {
        return nullptr;
    }
    const auto* const instruction = static_cast<const DOMProcessingInstruction*>(node);
    return domText(instruction->getTarget()) == kConditionTarget ? instruction : nullptr;
}

/// Calls `use` with the data of each instruction in the document of `root` that `filter` accepts,
/// until it gives false.
template <class Use>
void forEachInstruction(const xercesc::DOMElement& root, const CondPIBaseFilter& filter,
                        Use&& use) {
    NodeWalker walker(root.getParentNode(), filter);
    const DOMNode* instruction = walker.nextNode();
    while (instruction && use(domText(instruction->getNodeValue()))) {
        instruction = walker.nextNode();
    }
}

}  // namespace

bool isSystemCondition(std::u16string_view name) {
    return contains(kSystemConditions, name);
}

InstructionKind classifyInstruction(std::u16string_view data) {
    constexpr std::array<std::u16string_view, 5> kNames{u"ShowAll", u"Condition", u"BoolCondExpr",
                                                        u"Condstart", u"Condend"};
    const auto name = std::find(kNames.begin(), kNames.end(), splitTokens(data).front());
    return static_cast<InstructionKind>(name - kNames.begin());
}

DOMNodeFilter::FilterAction CondPIBaseFilter::acceptNode(const DOMNode* node) const {
    const DOMProcessingInstruction* const instruction = asInstruction(node);
    if (!instruction) {
        return FILTER_SKIP;
    }
    const std::vector<std::u16string_view> tokens = splitTokens(domText(instruction->getData()));
    const bool isSelected = tokens.size() >= minTokens_ && !ignoresCondition(tokens[1]) &&
                            contains(instructionNames_, tokens[0]);
    return isSelected ? FILTER_ACCEPT : FILTER_REJECT;
}

bool CondPIBaseFilter::ignoresCondition(std::u16string_view /*name*/) const {
    return false;
}

CondPIFilter::CondPIFilter() : CondPIBaseFilter({u"Condition"}, kConditionTokens) {}

bool CondPIFilter::ignoresCondition(std::u16string_view name) const {
    return contains(kIgnoredConditions, name);
}

CondStartEndTagFilter::CondStartEndTagFilter()
    : CondPIBaseFilter({u"Condstart", u"Condend"}, kTagTokens) {}

CondExpressionFilter::CondExpressionFilter()
    : CondPIBaseFilter({u"BoolCondExpr"}, kExpressionTokens) {}

CondShowAllFilter::CondShowAllFilter() : CondPIBaseFilter({u"ShowAll"}, kShowAllTokens) {}

const ConditionRecord* ConditionTable::find(const std::u16string& name) const {
    const auto place = places_.find(name);
    return place == places_.end() ? nullptr : &records_[place->second];
}

void ConditionTable::put(ConditionRecord record) {
    const auto [place, isNew] = places_.emplace(record.name, records_.size());
    if (isNew) {
        records_.push_back(std::move(record));
    } else {
        records_[place->second] = std::move(record);
    }
}

std::optional<ConditionRecord> parseCondition(std::u16string_view data) {
    const std::vector<std::u16string_view> tokens = splitTokens(data);
    if (tokens.size() < kConditionTokens) {
        return std::nullopt;
    }
    return ConditionRecord{std::u16string(tokens[1]), std::u16string(data), tokens[4] == u"show"};
}

std::optional<ConditionRecord> parseShowAll(std::u16string_view data) {
    const std::vector<std::u16string_view> tokens = splitTokens(data);
    if (tokens.size() < kShowAllTokens) {
        return std::nullopt;
    }
    return ConditionRecord{std::u16string(tokens[0]), std::u16string(data), tokens[1] == u"True"};
}

std::optional<CondExpressionRecord> parseExpression(std::u16string_view data) {
    const std::vector<std::u16string_view> tokens = splitTokens(data);
    if (tokens.size() < kExpressionTokens) {
        return std::nullopt;
    }
    return CondExpressionRecord{std::u16string(tokens[1]), tokens[3] == u"1" || tokens[3] == u"2"};
}

void loadConditionCatalog(ConditionCatalog& catalog, xercesc::DOMElement& root) {
    catalog.root = &root;
    ++WorkCounts::total().conditionReads;
    forEachInstruction(root, CondPIFilter(), [&](std::u16string_view data) {
        std::optional<ConditionRecord> condition = parseCondition(data);
        if (condition && !catalog.conditions.find(condition->name)) {
            catalog.conditions.put(*std::move(condition));
        }
        return true;
    });
    forEachInstruction(root, CondShowAllFilter(), [&](std::u16string_view data) {
        catalog.showAllRecord = parseShowAll(data);
        return false;
    });
    catalog.showAll = catalog.showAllRecord && catalog.showAllRecord->shown;
    if (!catalog.showAll) {
        forEachInstruction(root, CondExpressionFilter(), [&](std::u16string_view data) {
            catalog.expression = parseExpression(data);
            return false;
        });
    }
    summariseConditions(catalog);
}

ConditionCatalogs& ConditionCatalogs::instance() {
    return RequestSingleton<ConditionCatalogs>::instance();
}

const ConditionCatalog& ConditionCatalogs::catalogOf(xercesc::DOMElement& root) {
    if (!ShortCuts::taken().keepConditions) {
        forget(&root);
    }
    const auto [catalog, isNew] = catalogs_.try_emplace(&root);
    if (isNew) {
        loadConditionCatalog(catalog->second, root);
    }
    return catalog->second;
}

void summariseConditions(ConditionCatalog& catalog) {
    std::u16string& summary = catalog.summaryExpression;
    if (catalog.expression && catalog.expression->active) {
        summary = catalog.expression->text;
        return;
    }
    summary.clear();
    for (const ConditionRecord& condition : catalog.conditions.records()) {
        if (isSystemCondition(condition.name) || !(catalog.showAll || condition.shown)) {
            continue;
        }
        summary.append(summary.empty() ? u"" : u"or");
        summary.append(u"\"").append(condition.name).append(u"\"");
    }
}

}  // namespace marrowpress
