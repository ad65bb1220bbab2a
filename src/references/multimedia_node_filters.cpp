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

/// A test that gives the type of `handler` for what both `filter` and `hasReference`, which gets
/// the element and the handler, select.
template <class HasReference>
MultimediaTest makeTest(const ClassBasedElementNodeFilter& filter, MultimediaNodeType type,
                        HasReference hasReference) {
    const MultimediaNodeHandler& handler = multimediaNodeHandler(type);
    return [&filter, &handler, hasReference](const DOMNode* node) {
        const FilterAction action = filter.acceptNode(node);
        if (action == DOMNodeFilter::FILTER_REJECT) {
            return MultimediaNodeType::MultimediaNodeRejected;
        }
        const bool isSelected =
            action == DOMNodeFilter::FILTER_ACCEPT && hasReference(*asElement(node), handler);
        return isSelected ? handler.type() : MultimediaNodeType::MultimediaNodeNone;
    };
}

bool refersDirectly(const DOMElement& element, const MultimediaNodeHandler& handler) {
    return !handler.getRefValue(element).empty();
}

/// A param is a reference to media only under these names, unless it has a key.
bool paramRefersDirectly(const DOMElement& param, const MultimediaNodeHandler& handler) {
    const std::u16string_view name = attributeView(param, u"name");
    return (name == u"src" || name == u"poster") && refersDirectly(param, handler);
}

bool refersByKey(const DOMElement& element, const MultimediaNodeHandler& handler) {
    return !handler.getKeyrefValue(element).empty();
}

template <class ObjectTest, class ParamTest>
MultimediaTests makeTests(ObjectTest objectTest, ParamTest paramTest) {
    return {makeTest(objectFilter(), MultimediaNodeType::MultimediaNodeObject, objectTest),
            makeTest(paramFilter(), MultimediaNodeType::MultimediaNodeParam, paramTest)};
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
    static const MultimediaTests tests = makeTests(refersDirectly, paramRefersDirectly);
    return firstAnswer(tests, node);
}

FilterAction MultimediaKeyrefAttrContainingNodeFilter::acceptNode(const DOMNode* node) const {
    return actionFor(getType(node));
}

MultimediaNodeType MultimediaKeyrefAttrContainingNodeFilter::getType(const DOMNode* node) const {
    static const MultimediaTests tests = makeTests(refersByKey, refersByKey);
    return firstAnswer(tests, node);
}

}  // namespace marrowpress
