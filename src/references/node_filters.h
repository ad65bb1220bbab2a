#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include <xercesc/dom/DOMElement.hpp>

#include "dom/element_node_filter.h"

/// The selections of elements that everything else is built on: each is one
/// small filter, used by a walker or asked directly about one element.
///
/// Every filter rejects what is no element (a null pointer included). All
/// comparisons are exact, by code unit, and a missing attribute reads as empty.
/// Filters keep nothing from one call to the next.
namespace marrowpress {

/// Selects by DITA class: the token has to stand at the start of the class
/// value, behind its first two characters, which are not looked at. Where an
/// element has no class value at all, its tag name decides.
///
/// A token that ends in a blank matches a whole class name; without the blank
/// it matches every class name that begins with it. A class value has to be at
/// least two characters longer than the token.
class ClassBasedElementNodeFilter : public ElementNodeFilter {
public:
    ClassBasedElementNodeFilter(std::u16string classToken, std::vector<std::u16string> elementNames)
        : classToken_(std::move(classToken)), elementNames_(std::move(elementNames)) {}

    /// Whether the token or a name fits `element`, whose class value is handed over: it is the same
    /// for all filters that an element is held against.
    bool fits(const xercesc::DOMElement& element, std::u16string_view classValue) const;

protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;

private:
    std::u16string classToken_;
    std::vector<std::u16string> elementNames_;
};

class TopicNodeFilter final : public ClassBasedElementNodeFilter {
public:
    TopicNodeFilter();
};

class MapNodeFilter final : public ClassBasedElementNodeFilter {
public:
    MapNodeFilter();
};

/// References in a map. By name it knows neither `topicref` nor most of its
/// specialisations: without class values a map has none of these.
class TopicrefNodeFilter final : public ClassBasedElementNodeFilter {
public:
    TopicrefNodeFilter();
};

class TopicmetaNodeFilter final : public ClassBasedElementNodeFilter {
public:
    TopicmetaNodeFilter();
};

/// Heads of a map that refer to nothing. Never matches by name.
class TopicheadNodeFilter final : public ClassBasedElementNodeFilter {
public:
    TopicheadNodeFilter();
};

class TitleNodeFilter final : public ClassBasedElementNodeFilter {
public:
    TitleNodeFilter();
};

/// Rejects a booktitle that profiling excludes.
class BookTitleNodeFilter final : public ClassBasedElementNodeFilter {
public:
    BookTitleNodeFilter();

protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;
};

class ImageNodeFilter final : public ClassBasedElementNodeFilter {
public:
    ImageNodeFilter();
};

class ObjectNodeFilter final : public ClassBasedElementNodeFilter {
public:
    ObjectNodeFilter();
};

class ParamNodeFilter final : public ClassBasedElementNodeFilter {
public:
    ParamNodeFilter();
};

class XrefNodeFilter final : public ClassBasedElementNodeFilter {
public:
    XrefNodeFilter();
};

class LinkNodeFilter final : public ClassBasedElementNodeFilter {
public:
    LinkNodeFilter();
};

class ReltableNodeFilter final : public ClassBasedElementNodeFilter {
public:
    ReltableNodeFilter();
};

class AbbreviatedFormNodeFilter final : public ClassBasedElementNodeFilter {
public:
    AbbreviatedFormNodeFilter();
};

/// Selects what refers to a key by a rule of its own, whether it does or not: objects and their
/// params, abbreviated forms, images.
class OwnKeyrefRuleNodeFilter final : public ElementNodeFilter {
protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;

private:
    ObjectNodeFilter objects_;
    ParamNodeFilter params_;
    AbbreviatedFormNodeFilter abbreviatedForms_;
    ImageNodeFilter images_;
};

/// Selects by tag name alone.
class ElemTagBasedElementNodeFilter : public ElementNodeFilter {
public:
    explicit ElemTagBasedElementNodeFilter(std::u16string tagName) : tagName_(std::move(tagName)) {}

protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;

private:
    std::u16string tagName_;
};

/// The container of several topics in one file.
class DitabaseNodeFilter final : public ElemTagBasedElementNodeFilter {
public:
    DitabaseNodeFilter();
};

/// Selects by the value of one attribute. An empty value also selects elements without the
/// attribute.
class AttrBasedElementNodeFilter final : public ElementNodeFilter {
public:
    AttrBasedElementNodeFilter(std::u16string attribute, std::u16string value)
        : attribute_(std::move(attribute)), value_(std::move(value)) {}

protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;

private:
    std::u16string attribute_;
    std::u16string value_;
};

/// Selects what has an "id".
class IdAttrContainingNodeFilter final : public ElementNodeFilter {
protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;
};

/// Selects what has a "conref".
class ConrefAttrContainingNodeFilter final : public ElementNodeFilter {
protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;
};

/// Selects what has a "conkeyref".
class ConkeyrefAttrContainingNodeFilter final : public ElementNodeFilter {
protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;
};

/// The value of "keyref" that says: this key reference is dealt with.
inline constexpr std::u16string_view kIgnoreKeyref = u"--qs-mwpp-ignore-keyref";

/// Selects what has a "keyref" other than the ignore marker. Below a marked element it goes on.
class KeyrefAttrContainingNodeFilter final : public ElementNodeFilter {
protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;
};

/// Selects what defines keys; what profiling excludes defines none, and nothing below it does.
class KeyDefinitionNodeFilter final : public ElementNodeFilter {
protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;
};

/// Selects what refers directly: by "href", "conref", "conrefend" or "xtrf".
class DirectRefAttrContainingNodeFilter final : public ElementNodeFilter {
public:
    /// The bits of the attributes, in the order in which they are dealt with.
    static constexpr std::array<std::uint32_t, 4> bits() { return {1, 2, 4, 8}; }

    /// The bits of those attributes of `element` that are not empty.
    std::uint32_t mask(const xercesc::DOMElement& element) const;

protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;

private:
    struct Entry {
        std::u16string attribute;
        std::uint32_t bit;
    };
    std::vector<Entry> entries_{{u"href", 1}, {u"conref", 2}, {u"conrefend", 4}, {u"xtrf", 8}};
};

}  // namespace marrowpress
