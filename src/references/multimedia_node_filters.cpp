#include "references/multimedia_node_filters.h"

#include <array>
#include <functional>

#include "dom/attributes.h"
#include "dom/nodes.h"
#include "references/node_filters.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::DOMNodeFilter;
using FilterAction = DOMNodeFilter::FilterAction;

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
