#include "references/node_filters.h"

#include <algorithm>
#include <functional>

#include "references/reference_resolution.h"
#include "support/dom_attributes.h"
#include "support/request_singleton.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::DOMNodeFilter;
using FilterAction = DOMNodeFilter::FilterAction;

/// How many characters open a class value: a sign and a blank.
constexpr std::size_t kClassOpening = 2;

FilterAction acceptIf(bool isSelected) {
    return isSelected ? DOMNodeFilter::FILTER_ACCEPT : DOMNodeFilter::FILTER_SKIP;
}

bool isExcluded(const DOMElement& element) {
    const ExclusionFilterHolder* const holder = RequestSingleton<ExclusionFilterHolder>::existing();
    return holder && holder->excludes(element);
}

}  // namespace

const DOMElement* asElement(const DOMNode* node) noexcept {
    return node && node->getNodeType() == DOMNode::ELEMENT_NODE
               ? dynamic_cast<const DOMElement*>(node)
               : nullptr;
}

ExclusionFilterHolder& ExclusionFilterHolder::instance() {
    return RequestSingleton<ExclusionFilterHolder>::instance();
}

FilterAction ElementNodeFilter::acceptNode(const DOMNode* node) const {
    const DOMElement* const element = asElement(node);
    return element ? acceptElement(*element) : FILTER_REJECT;
}

FilterAction ClassBasedElementNodeFilter::acceptElement(const DOMElement& element) const {
    const std::u16string_view classValue = attributeView(element, u"class");
    if (classValue.empty()) {
        const std::u16string_view tagName = domText(element.getTagName());
        return acceptIf(std::find(elementNames_.begin(), elementNames_.end(), tagName) !=
                        elementNames_.end());
    }
    if (classValue.size() < classToken_.size() || classValue.size() < kClassOpening) {
        return FILTER_SKIP;
    }
    return acceptIf(classValue.substr(kClassOpening, classToken_.size()) == classToken_);
}

TopicNodeFilter::TopicNodeFilter()
    : ClassBasedElementNodeFilter(u"topic/topic",
                                  {u"topic", u"concept", u"reference", u"task", u"glossentry",
                                   u"glossgroup", u"troubleshooting"}) {}

MapNodeFilter::MapNodeFilter() : ClassBasedElementNodeFilter(u"map/map", {u"map", u"bookmap"}) {}

TopicrefNodeFilter::TopicrefNodeFilter()
    : ClassBasedElementNodeFilter(u"map/topicref ", {u"topicmeta", u"keydef", u"mapref"}) {}

TopicmetaNodeFilter::TopicmetaNodeFilter()
    : ClassBasedElementNodeFilter(u"map/topicmeta ", {u"topicmeta"}) {}

TopicheadNodeFilter::TopicheadNodeFilter()
    : ClassBasedElementNodeFilter(u"map/topicref mapgroup-d/topichead ",
                                  {u"map/topicref mapgroup-d/topichead "}) {}

TitleNodeFilter::TitleNodeFilter() : ClassBasedElementNodeFilter(u"topic/title ", {u"title"}) {}

BookTitleNodeFilter::BookTitleNodeFilter()
    : ClassBasedElementNodeFilter(u"topic/title bookmap/booktitle ", {u"booktitle"}) {}

FilterAction BookTitleNodeFilter::acceptElement(const DOMElement& element) const {
    const FilterAction action = ClassBasedElementNodeFilter::acceptElement(element);
    return action == FILTER_ACCEPT && isExcluded(element) ? FILTER_REJECT : action;
}

ImageNodeFilter::ImageNodeFilter() : ClassBasedElementNodeFilter(u"topic/image ", {u"image"}) {}

XrefNodeFilter::XrefNodeFilter() : ClassBasedElementNodeFilter(u"topic/xref ", {u"xref"}) {}

LinkNodeFilter::LinkNodeFilter() : ClassBasedElementNodeFilter(u"topic/link ", {u"link"}) {}

ReltableNodeFilter::ReltableNodeFilter()
    : ClassBasedElementNodeFilter(u"map/reltable ", {u"reltable"}) {}

AbbreviatedFormNodeFilter::AbbreviatedFormNodeFilter()
    : ClassBasedElementNodeFilter(u"topic/term abbrev-d/abbreviated-form ", {u"abbreviated-form"}) {
}

FilterAction ElemTagBasedElementNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(domText(element.getTagName()) == tagName_);
}

DitabaseNodeFilter::DitabaseNodeFilter() : ElemTagBasedElementNodeFilter(u"dita") {}

FilterAction AttrBasedElementNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(attributeView(element, attribute_.c_str()) == value_);
}

FilterAction IdAttrContainingNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(!attributeView(element, u"id").empty());
}

FilterAction ConrefAttrContainingNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(!attributeView(element, u"conref").empty());
}

FilterAction ConkeyrefAttrContainingNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(!attributeView(element, u"conkeyref").empty());
}

FilterAction KeyrefAttrContainingNodeFilter::acceptElement(const DOMElement& element) const {
    const std::u16string_view keyref = attributeView(element, u"keyref");
    return acceptIf(!keyref.empty() && keyref != kIgnoreKeyref);
}

FilterAction KeyDefinitionNodeFilter::acceptElement(const DOMElement& element) const {
    if (isExcluded(element)) {
        return FILTER_REJECT;
    }
    return acceptIf(!attributeView(element, u"keys").empty());
}

std::uint32_t DirectRefAttrContainingNodeFilter::mask(const DOMElement& element) const {
    std::uint32_t mask = 0;
    for (const Entry& entry : entries_) {
        if (!attributeView(element, entry.attribute.c_str()).empty()) {
            mask |= entry.bit;
        }
    }
    return mask;
}

FilterAction DirectRefAttrContainingNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(mask(element) != 0);
}

FilterAction DitamapRefNodeFilter::acceptElement(const DOMElement& element) const {
    if (isExcluded(element)) {
        return FILTER_REJECT;
    }
    const DitaDocKind kind = classifyReference(readDitaReference(element, context_));
    return acceptIf(kind == DitaDocKind::DitaDocMap || kind == DitaDocKind::DitaDocUnknownXml);
}

namespace {

using MultimediaTest = std::function<MultimediaNodeType(const DOMNode*)>;
/// The object test and the param test, in the order in which they are tried.
using MultimediaTests = std::array<MultimediaTest, 2>;

const ClassBasedElementNodeFilter& objectFilter() {
    static const ClassBasedElementNodeFilter filter(u"topic/object ", {u"object"});
    return filter;
}

const ClassBasedElementNodeFilter& paramFilter() {
    static const ClassBasedElementNodeFilter filter(u"topic/param ", {u"param"});
    return filter;
}

/// A test that gives `type` for what both `filter` and `hasReference` select.
template <class HasReference>
MultimediaTest makeTest(const ClassBasedElementNodeFilter& filter, MultimediaNodeType type,
                        HasReference hasReference) {
    return [&filter, type, hasReference](const DOMNode* node) {
        const FilterAction action = filter.acceptNode(node);
        if (action == DOMNodeFilter::FILTER_REJECT) {
            return MultimediaNodeType::MultimediaNodeRejected;
        }
        const bool isSelected =
            action == DOMNodeFilter::FILTER_ACCEPT && hasReference(*asElement(node));
        return isSelected ? type : MultimediaNodeType::MultimediaNodeNone;
    };
}

template <class HasReference>
MultimediaTest makeObjectTest(HasReference hasReference) {
    return makeTest(objectFilter(), MultimediaNodeType::MultimediaNodeObject, hasReference);
}

template <class HasReference>
MultimediaTest makeParamTest(HasReference hasReference) {
    return makeTest(paramFilter(), MultimediaNodeType::MultimediaNodeParam, hasReference);
}

MultimediaNodeType firstAnswer(const MultimediaTests& tests, const DOMNode* node) {
    const MultimediaNodeType object = tests[0](node);
    return object == MultimediaNodeType::MultimediaNodeNone ? tests[1](node) : object;
}

FilterAction actionFor(MultimediaNodeType type) {
    switch (type) {
        case MultimediaNodeType::MultimediaNodeNone:
            return DOMNodeFilter::FILTER_SKIP;
        case MultimediaNodeType::MultimediaNodeRejected:
            return DOMNodeFilter::FILTER_REJECT;
        case MultimediaNodeType::MultimediaNodeObject:
        case MultimediaNodeType::MultimediaNodeParam:
            break;
    }
    return DOMNodeFilter::FILTER_ACCEPT;
}

}  // namespace

FilterAction MultimediaRefAttrContainingNodeFilter::acceptNode(const DOMNode* node) const {
    return actionFor(getType(node));
}

MultimediaNodeType MultimediaRefAttrContainingNodeFilter::getType(const DOMNode* node) const {
    static const MultimediaTests tests{
        makeObjectTest(
            [](const DOMElement& object) { return !attributeView(object, u"data").empty(); }),
        makeParamTest([](const DOMElement& param) {
            const std::u16string_view name = attributeView(param, u"name");
            const bool isReference = name == u"src" || name == u"poster";
            return isReference && !attributeView(param, u"value").empty();
        })};
    return firstAnswer(tests, node);
}

FilterAction MultimediaKeyrefAttrContainingNodeFilter::acceptNode(const DOMNode* node) const {
    return actionFor(getType(node));
}

MultimediaNodeType MultimediaKeyrefAttrContainingNodeFilter::getType(const DOMNode* node) const {
    static const MultimediaTests tests{makeObjectTest([](const DOMElement& object) {
                                           return !attributeView(object, u"datakeyref").empty();
                                       }),
                                       makeParamTest([](const DOMElement& param) {
                                           return !attributeView(param, u"keyref").empty();
                                       })};
    return firstAnswer(tests, node);
}

}  // namespace marrowpress
