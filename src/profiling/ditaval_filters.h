#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

#include "dom/element_node_filter.h"
#include "support/text.h"

/// The filters that read a DITAVAL document, those that apply its rules, and
/// the pass that takes excluded elements out of a finished document.
namespace marrowpress {

class RunObserver;

/// What a `prop` says is to be done.
enum class DitaValAction : std::uint8_t {
    kInclude = 0,
    kExclude = 1,
    kOther = 2,  ///< any other word: no rule
};

/// A filter of `prop` elements; it goes on below any other element, and not below a `prop` that
/// it doesn't select.
class DitaValNodeFilter : public ElementNodeFilter {
protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const final;
    virtual bool selects(std::u16string_view attribute, std::u16string_view value,
                         std::u16string_view action) const = 0;
};

/// Selects the rule for a value of an attribute.
class DitaValPropNodeFilter final : public DitaValNodeFilter {
protected:
    bool selects(std::u16string_view attribute, std::u16string_view value,
                 std::u16string_view action) const override;
};

/// Selects what makes exclusion the default.
class DefaultExcludeNodeFilter final : public DitaValNodeFilter {
protected:
    bool selects(std::u16string_view attribute, std::u16string_view value,
                 std::u16string_view action) const override;
};

/// Selects the rule for an attribute as a whole.
class DefaultValNodeFilter final : public DitaValNodeFilter {
protected:
    bool selects(std::u16string_view attribute, std::u16string_view value,
                 std::u16string_view action) const override;
};

/// The rule for one attribute: rejects an element all of whose tokens fall,
/// accepts one with a token that stays, and skips one that doesn't have the
/// attribute or has it empty.
///
/// Tokens are cut at U+0020 and compared exactly. A value of blanks alone has
/// no token that could stay.
class DitaValAttrValFilter : public ElementNodeFilter {
public:
    using Tokens = std::vector<std::u16string_view>;

    /// Whether a rule for a value with that action counts here.
    virtual bool takesValueFor(DitaValAction action) const = 0;
    virtual FilterAction acceptTokens(const Tokens& tokens) const = 0;

    const std::u16string& attributeName() const noexcept { return attributeName_; }

    void addValue(std::u16string value) { values_.insert(std::move(value)); }

protected:
    /// An empty `value` adds nothing.
    DitaValAttrValFilter(std::u16string attributeName, std::u16string value);

    FilterAction acceptElement(const xercesc::DOMElement& element) const final;
    bool holds(std::u16string_view token) const { return values_.find(token) != values_.end(); }

private:
    std::unordered_set<std::u16string, U16Hash, std::equal_to<>> values_;
    std::u16string attributeName_;
};

/// Values are excluded unless listed.
class DitaValAttrValAcceptFilter final : public DitaValAttrValFilter {
public:
    explicit DitaValAttrValAcceptFilter(std::u16string attributeName, std::u16string value = {})
        : DitaValAttrValFilter(std::move(attributeName), std::move(value)) {}

    bool takesValueFor(DitaValAction action) const override;
    FilterAction acceptTokens(const Tokens& tokens) const override;
};

/// Values are included unless listed.
class DitaValAttrValRejectFilter final : public DitaValAttrValFilter {
public:
    explicit DitaValAttrValRejectFilter(std::u16string attributeName, std::u16string value = {})
        : DitaValAttrValFilter(std::move(attributeName), std::move(value)) {}

    bool takesValueFor(DitaValAction action) const override;
    FilterAction acceptTokens(const Tokens& tokens) const override;
};

/// The filter of a whole profile. In the opposite sense of all others: accepts
/// an element that is excluded, because one of its attributes makes it fall,
/// and skips one that stays. It must be asked about elements only.
class DitaValExcludeFilter final : public xercesc::DOMNodeFilter {
public:
    using AttributeFilters = std::vector<std::unique_ptr<DitaValAttrValFilter>>;

    explicit DitaValExcludeFilter(AttributeFilters filters) : filters_(std::move(filters)) {}

    FilterAction acceptNode(const xercesc::DOMNode* node) const override;

    /// The attribute that makes `element` fall; empty when none does.
    std::u16string_view attributeThatExcludes(const xercesc::DOMElement& element) const;

    /// The rules, one for each attribute.
    const AttributeFilters& attributeFilters() const noexcept { return filters_; }

private:
    AttributeFilters filters_;
};

/// Gives each `draft-comment` that doesn't say otherwise the "translate" that it has by nature.
void markDraftComments(xercesc::DOMDocument& document);

/// Tells `observer` the values that elements of `document` have in the attributes that the run's
/// profile has rules for.
void observeConditionValues(RunObserver& observer, const xercesc::DOMDocument& document);

/// Tells `observer` that the run's profile excludes `element`.
void observeExcluded(RunObserver& observer, const xercesc::DOMElement& element);

/// Takes what the run's profile excludes out of a finished document, its document element
/// included. Does nothing, not even to draft comments, when the run has no profile.
void removeExcludedElements(xercesc::DOMDocument& document);

}  // namespace marrowpress
