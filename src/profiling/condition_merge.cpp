#include "profiling/condition_merge.h"

#include <utility>
#include <vector>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMProcessingInstruction.hpp>

#include "dom/element_node_filter.h"
#include "dom/element_walker.h"
#include "support/request_singleton.h"
#include "support/text.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;

constexpr std::u16string_view kReplacementPrefix = u"QS_REPLACE_CONDITION_";

std::u16string quoted(std::u16string_view name) {
    return std::u16string(u"\"").append(name).append(u"\"");
}

bool isMarker(const DOMNode& node) {
    static const CondStartEndTagFilter markers;
    return selects(markers, &node);
}

/// The condition that a start or end tag is about.
std::u16string conditionOf(const DOMNode& marker) {
    return std::u16string(splitTokens(domText(marker.getNodeValue()))[1]);
}

std::u16string currentName(const ConditionMergeState& state, const std::u16string& name) {
    const auto renamed = state.renames.find(name);
    return renamed == state.renames.end() ? name : renamed->second;
}

void foldExpression(ConditionMergeState& state, std::u16string expression) {
    if (!state.expression) {
        state.expression = {std::move(expression), true};
    } else if (!expression.empty()) {
        std::u16string& text = state.expression->text;
        text.insert(0, u"(").append(u")or(").append(expression).append(u")");
    }
}

/// Takes over a condition whose name an earlier document has.
void renameDocumentCondition(ConditionMergeState& state, ConditionRecord record,
                             const std::u16string& newName, TagRenames& tags,
                             std::u16string& documentExpression) {
    const std::u16string oldName = record.name;
    state.renames[oldName] = newName;
    const bool earlierShown = state.conditions.find(oldName)->shown;
    if (record.shown != earlierShown) {
        rewriteConditionState(record, earlierShown);
        record.shown = earlierShown;
    }
    rewriteConditionName(record, newName);
    record.name = newName;
    tags.add(oldName, newName);
    state.conditions.put(std::move(record));
    renameInExpression(newName, oldName, documentExpression);
}

}  // namespace

void ConditionMergeState::clear() {
    conditions = {};
    expression.reset();
}

ConditionRenamer& ConditionRenamer::instance() {
    return RequestSingleton<ConditionRenamer>::instance();
}

std::u16string ConditionRenamer::replacementName(std::u16string_view name) {
    if (isSystemCondition(name)) {
        return std::u16string(name);
    }
    const std::u16string number = toUtf16(std::to_string(counter_++));
    return std::u16string(kReplacementPrefix).append(name).append(u"_").append(number);
}

void mergeConditionCatalog(ConditionMergeState& state, const ConditionCatalog& catalog) {
    if (!state.mergeEnabled) {
        return;
    }
    TagRenames tags;
    std::u16string documentExpression = catalog.summaryExpression;
    for (const ConditionRecord& record : catalog.conditions.records()) {
        if (!state.conditions.find(record.name)) {
            state.conditions.put(record);
        } else if (state.expression) {
            const std::u16string newName =
                ConditionRenamer::instance().replacementName(record.name);
            renameDocumentCondition(state, record, newName, tags, documentExpression);
        }
    }
    tags.apply(*catalog.root);
    foldExpression(state, std::move(documentExpression));
}

void renameMergedMarker(const ConditionMergeState& state, DOMNode& node) {
    if (state.mergeEnabled && isMarker(node)) {
        renameConditionMarker(currentName(state, conditionOf(node)), node);
    }
}

void carryConditionMarker(const ConditionMergeState& state, DOMNode& node, DOMElement& parent) {
    if (!state.mergeEnabled || !isMarker(node)) {
        return;
    }
    renameMergedMarker(state, node);
    parent.appendChild(parent.getOwnerDocument()->importNode(&node, true));
}

void renameConditionMarker(std::u16string_view name, DOMNode& instruction) {
    if (isMarker(instruction)) {
        const std::u16string data(domText(instruction.getNodeValue()));
        const std::u16string renamed =
            std::u16string(splitTokens(data)[0]).append(u" ").append(name);
        instruction.setNodeValue(renamed.c_str());
    }
}

void writeConditionPIs(const ConditionMergeState& state, DOMElement* root) {
    if (!state.mergeEnabled || !root) {
        return;
    }
    DOMDocument& document = *root->getOwnerDocument();
    const auto writeInFront = [&](const std::u16string& data) {
        root->getParentNode()->insertBefore(
            document.createProcessingInstruction(kConditionTarget, data.c_str()), root);
    };
    for (const ConditionRecord& condition : state.conditions.records()) {
        writeInFront(condition.data);
    }
    if (state.expression) {
        writeInFront(std::u16string(u"BoolCondExpr ")
                         .append(state.expression->text)
                         .append(u" State ")
                         .append(state.expression->active ? u"1" : u"0"));
    }
}

void rewriteConditionState(ConditionRecord& record, bool shown) {
    const std::vector<std::u16string_view> tokens = splitTokens(record.data);
    if (tokens.size() < kConditionTokens) {
        return;
    }
    // With more than six tokens the last is lost, and the sixth comes at the end.
    std::u16string data;
    for (std::size_t index = 0; index + 2 < tokens.size(); ++index) {
        data.append(tokens[index]).append(u" ");
    }
    data.append(shown ? u"show" : u"hide").append(u" ").append(tokens[5]);
    record.data = std::move(data);
}

void rewriteConditionName(ConditionRecord& record, std::u16string_view name) {
    const std::vector<std::u16string_view> tokens = splitTokens(record.data);
    if (tokens.size() < kConditionTokens) {
        return;
    }
    std::u16string data(u"Condition ");
    data.append(name);
    for (std::size_t index = 2; index < tokens.size(); ++index) {
        data.append(u" ").append(tokens[index]);
    }
    record.data = std::move(data);
}

void TagRenames::add(const std::u16string& oldName, const std::u16string& newName) {
    std::vector<std::u16string> names = std::exchange(documentNames_[oldName], {});
    if (!newNames_.contains(oldName)) {
        names.push_back(oldName);
    }
    std::vector<std::u16string>& called = documentNames_[newName];
    for (std::u16string& name : names) {
        newNames_[name] = newName;
        called.push_back(std::move(name));
    }
}

void TagRenames::apply(DOMElement& root) const {
    if (newNames_.empty()) {
        return;
    }
    const CondStartEndTagFilter filter;
    NodeWalker walker(&root, filter);
    while (DOMNode* const marker = walker.nextNode()) {
        const auto renamed = newNames_.find(conditionOf(*marker));
        if (renamed != newNames_.end()) {
            renameConditionMarker(renamed->second, *marker);
        }
    }
}

void renameInExpression(std::u16string_view newName, std::u16string_view oldName,
                        std::u16string& expression) {
    const std::u16string search = quoted(oldName);
    const std::size_t place = expression.find(search);
    if (place != std::u16string::npos) {
        expression.replace(place, search.size(), quoted(newName));
    }
}

}  // namespace marrowpress
