#pragma once

#include <vector>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNode.hpp>

/// Steps from a node to those beside, above and below it.
///
/// Lists are made before they are used: what is inserted or copied into the
/// tree meanwhile isn't part of them.
namespace marrowpress {

/// `node` as an element; null when it is null or of another kind.
inline const xercesc::DOMElement* asElement(const xercesc::DOMNode* node) noexcept {
    return node && node->getNodeType() == xercesc::DOMNode::ELEMENT_NODE
               ? static_cast<const xercesc::DOMElement*>(node)
               : nullptr;
}

inline xercesc::DOMElement* asElement(xercesc::DOMNode* node) noexcept {
    return const_cast<xercesc::DOMElement*>(asElement(static_cast<const xercesc::DOMNode*>(node)));
}

/// `first` and the siblings behind it, up to `stop`, which is left out; to the last without one.
inline std::vector<xercesc::DOMNode*> siblingsFrom(xercesc::DOMNode* first,
                                                   const xercesc::DOMNode* stop = nullptr) {
    std::vector<xercesc::DOMNode*> siblings;
    for (xercesc::DOMNode* node = first; node && node != stop; node = node->getNextSibling()) {
        siblings.push_back(node);
    }
    return siblings;
}

/// The children of `parent`, all kinds of node, in order.
inline std::vector<xercesc::DOMNode*> childrenOf(const xercesc::DOMNode& parent) {
    return siblingsFrom(parent.getFirstChild());
}

/// The elements among the children of `parent`, in order.
inline std::vector<xercesc::DOMElement*> childElementsOf(const xercesc::DOMElement& parent) {
    std::vector<xercesc::DOMElement*> children;
    for (xercesc::DOMElement* child = parent.getFirstElementChild(); child;
         child = child->getNextElementSibling()) {
        children.push_back(child);
    }
    return children;
}

/// Takes out all children of `parent`. They stay alive with their document.
inline void removeChildren(xercesc::DOMNode& parent) {
    while (xercesc::DOMNode* const child = parent.getFirstChild()) {
        parent.removeChild(child);
    }
}

/// Whether `node` is `ancestor` or stands in it.
inline bool isWithin(const xercesc::DOMNode& node, const xercesc::DOMNode& ancestor) {
    const xercesc::DOMNode* around = &node;
    while (around && around != &ancestor) {
        around = around->getParentNode();
    }
    return around;
}

}  // namespace marrowpress
