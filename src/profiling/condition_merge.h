#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNode.hpp>

#include "profiling/conditional_pis.h"

/// The merge of the conditional text of several source documents into one set
/// for the output document that they become.
///
/// A condition that two documents define becomes two: the later one, and all
/// that its document says of it, gets another name, and the state of the
/// earlier one. The documents' expressions are joined. As long as merging is
/// not enabled, nothing here does anything, and instructions inside what is
/// copied come along as they are.
namespace marrowpress {

/// What one output document has gathered.
struct ConditionMergeState {
    ConditionTable conditions;
    /// Empty until a document has been merged: that marks the first.
    std::optional<CondExpressionRecord> expression;
    /// The new names of conditions by their old ones; those of later documents replace earlier
    /// ones.
    std::unordered_map<std::u16string, std::u16string> renames;
    bool mergeEnabled = false;

    /// Empties the conditions and the expression, when they have been written.
    void clear();
};

/// Makes the names that replace clashing ones: each has a number that no other
/// of the request has.
class ConditionRenamer {
public:
    static ConditionRenamer& instance();

    /// A condition of the application's own keeps its name, and takes no number.
    std::u16string replacementName(std::u16string_view name);

private:
    std::uint32_t counter_ = 0;
};

/// The names that the start and end tags of a document are to get.
class TagRenames {
public:
    /// What is called `oldName`, by the document or by an earlier rename, is to be called
    /// `newName`.
    void add(const std::u16string& oldName, const std::u16string& newName);

    /// Rewrites the tags below and including `root`, in one walk.
    void apply(xercesc::DOMElement& root) const;

private:
    std::unordered_map<std::u16string, std::u16string> newNames_;  ///< by the document's names
    std::unordered_map<std::u16string, std::vector<std::u16string>>
        documentNames_;  ///< by new ones
};

/// Merges a document, before its content is copied. Tags inside its root are renamed in place.
void mergeConditionCatalog(ConditionMergeState& state, const ConditionCatalog& catalog);

/// Gives a start or end tag about to be copied the name that its condition has now. Other nodes
/// stay as they are.
void renameMergedMarker(const ConditionMergeState& state, xercesc::DOMNode& node);

/// Appends a copy of a start or end tag that stands beside the source's root to `parent`, under
/// the name that its condition has now. Other nodes are not copied.
void carryConditionMarker(const ConditionMergeState& state, xercesc::DOMNode& node,
                          xercesc::DOMElement& parent);

/// Rewrites a start or end tag to that name; further tokens are dropped. Other nodes stay.
void renameConditionMarker(std::u16string_view name, xercesc::DOMNode& instruction);

/// Writes the merged definitions, and behind them the one expression, in front of `root`, the
/// document element of the output; nothing without a root.
void writeConditionPIs(const ConditionMergeState& state, xercesc::DOMElement* root);

/// The parts of a merge.
void rewriteConditionState(ConditionRecord& record, bool shown);
void rewriteConditionName(ConditionRecord& record, std::u16string_view name);
/// Replaces the first place where the old name stands in double quotes, and no other.
void renameInExpression(std::u16string_view newName, std::u16string_view oldName,
                        std::u16string& expression);

}  // namespace marrowpress
