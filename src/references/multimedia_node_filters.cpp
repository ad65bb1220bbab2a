#include "references/multimedia_node_filters.h"

#include "dom/attributes.h"
#include "dom/nodes.h"
#include "references/node_filters.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::DOMNodeFilter;
using FilterAction = DOMNodeFilter::FilterAction;

MultimediaNodeType typeByClass(const DOMElement& element) {
    static const ObjectNodeFilter objects;
    static const ParamNodeFilter params;
    const std::u16string_view classValue = attributeView(element, u"class");
    if (objects.fits(element, classValue)) {
        return MultimediaNodeType::MultimediaNodeObject;
    }
    return params.fits(element, classValue) ? MultimediaNodeType::MultimediaNodeParam
                                            : MultimediaNodeType::MultimediaNodeNone;
}

/// The type of `node`; none for an object or a param that `refers` doesn't select.
template <class Refers>
MultimediaNodeType typeOf(const DOMNode* node, Refers refers) {
    const DOMElement* const element = asElement(node);
    if (!element) {
        return MultimediaNodeType::MultimediaNodeRejected;
    }
    const MultimediaNodeType type = typeByClass(*element);
    const bool isSelected = type != MultimediaNodeType::MultimediaNodeNone &&
                            refers(*element, multimediaNodeHandler(type));
    return isSelected ? type : MultimediaNodeType::MultimediaNodeNone;
}

/// A param is a reference to media only under these names, unless it has a key.
bool refersDirectly(const DOMElement& element, const MultimediaNodeHandler& handler) {
    if (handler.type() == MultimediaNodeType::MultimediaNodeParam) {
        const std::u16string_view name = attributeView(element, u"name");
        if (name != u"src" && name != u"poster") {
            return false;
        }
    }
    return !handler.getRefValue(element).empty();
}

bool refersByKey(const DOMElement& element, const MultimediaNodeHandler& handler) {
    return !handler.getKeyrefValue(element).empty();
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
    return typeOf(node, refersDirectly);
}

FilterAction MultimediaKeyrefAttrContainingNodeFilter::acceptNode(const DOMNode* node) const {
    return actionFor(getType(node));
}

MultimediaNodeType MultimediaKeyrefAttrContainingNodeFilter::getType(const DOMNode* node) const {
    return typeOf(node, refersByKey);
}

}  // namespace marrowpress
