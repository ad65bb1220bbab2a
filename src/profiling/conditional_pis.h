#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

/// The application's conditional text, as it stands in a document: processing
/// instructions with the target "Qs", whose data are tokens separated by U+0020.
///
///     Condition NAME x y STATE z           shown when STATE is "show"
///     ShowAll VALUE                        on when VALUE is "True"
///     BoolCondExpr EXPRESSION word STATE   active when STATE is "1" or "2"
///     Condstart NAME                       conditional content begins
///     Condend NAME                         conditional content ends
///
/// Nothing is evaluated: the application applies the conditions. An
/// instruction of another shape is passed over.
namespace marrowpress {

inline constexpr const char16_t* kConditionTarget = u"Qs";
/// How many tokens a "Condition" has at least.
inline constexpr std::size_t kConditionTokens = 6;

/// Whether the name is one of the application's own conditions. These are recorded and written
/// like any other, but take no part in expressions and are never renamed.
bool isSystemCondition(std::u16string_view name);

enum class InstructionKind {
    kShowAll = 0,
    kCondition = 1,
    kBoolCondExpr = 2,
    kCondstart = 3,
    kCondend = 4,
    kOther = 5,
};

/// The kind by the first token of `data`, which has at least one.
InstructionKind classifyInstruction(std::u16string_view data);

/// Selects instructions by their first token and their number of tokens. Goes on below what is no
/// instruction with that target.
class CondPIBaseFilter : public xercesc::DOMNodeFilter {
public:
    FilterAction acceptNode(const xercesc::DOMNode* node) const final;

    /// Whether instructions about the condition of that name are not to be seen.
    virtual bool ignoresCondition(std::u16string_view name) const;

protected:
    CondPIBaseFilter(std::vector<std::u16string> instructionNames, std::size_t minTokens)
        : instructionNames_(std::move(instructionNames)), minTokens_(minTokens) {}

private:
    std::vector<std::u16string> instructionNames_;
    std::size_t minTokens_;
};

/// Selects definitions, but for four conditions that are nobody's business.
class CondPIFilter final : public CondPIBaseFilter {
public:
    CondPIFilter();
    bool ignoresCondition(std::u16string_view name) const override;
};

class CondStartEndTagFilter final : public CondPIBaseFilter {
public:
    CondStartEndTagFilter();
};

class CondExpressionFilter final : public CondPIBaseFilter {
public:
    CondExpressionFilter();
};

class CondShowAllFilter final : public CondPIBaseFilter {
public:
    CondShowAllFilter();
};

/// A definition, or "ShowAll", as read.
struct ConditionRecord {
    std::u16string name;
    std::u16string data;  ///< of the instruction, unchanged
    bool shown;
};

struct CondExpressionRecord {
    std::u16string text;
    bool active;
};

/// Records by name, in the order in which the names first came.
class ConditionTable {
public:
    /// The record of that name, or null.
    const ConditionRecord* find(const std::u16string& name) const;

    /// Adds the record under its name, or puts it in the place of the one that has the name.
    void put(ConditionRecord record);

    const std::vector<ConditionRecord>& records() const noexcept { return records_; }

private:
    std::vector<ConditionRecord> records_;
    std::unordered_map<std::u16string, std::size_t> places_;
};

/// The conditional text of one source document.
struct ConditionCatalog {
    xercesc::DOMElement* root = nullptr;
    ConditionTable conditions;
    std::optional<CondExpressionRecord> expression;
    std::optional<ConditionRecord> showAllRecord;
    bool showAll = false;
    /// What the document shows: its own active expression, or the shown conditions joined by "or".
    std::u16string summaryExpression;
};

/// The records in an instruction's data; nothing if it has too few tokens.
std::optional<ConditionRecord> parseCondition(std::u16string_view data);
std::optional<ConditionRecord> parseShowAll(std::u16string_view data);
std::optional<CondExpressionRecord> parseExpression(std::u16string_view data);

/// Reads the instructions in, in front of and behind `root`, a document element. Of two definitions
/// of a name the first counts, and so do the first "ShowAll" and the first expression. While all
/// is shown, no expression is read.
void loadConditionCatalog(ConditionCatalog& catalog, xercesc::DOMElement& root);

/// The conditional text of the sources of a request, each read once however often its parts are
/// referenced. Renaming tags changes nothing of it.
class ConditionCatalogs {
public:
    static ConditionCatalogs& instance();

    /// What `loadConditionCatalog` gives for `root`; until it is forgotten.
    const ConditionCatalog& catalogOf(xercesc::DOMElement& root);

    /// Instructions may have come into the document of `root`, which may be null.
    void forget(const xercesc::DOMElement* root) { catalogs_.erase(root); }

private:
    std::unordered_map<const xercesc::DOMElement*, ConditionCatalog> catalogs_;
};

/// Sets `summaryExpression`.
void summariseConditions(ConditionCatalog& catalog);

}  // namespace marrowpress
