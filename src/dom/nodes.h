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

/// `node` if it is an element, else the first element among the siblings behind it; null when there
/// is none, or for null.
inline xercesc::DOMElement* elementFrom(xercesc::DOMNode* node) noexcept {
    while (node && node->getNodeType() != xercesc::DOMNode::ELEMENT_NODE) {
        node = node->getNextSibling();
    }
    return static_cast<xercesc::DOMElement*>(node);
}

/// The first element among the children of `parent`; null without one. The engine's own questions
/// of these names look at the parent behind each last child, in case it is an entity reference,
/// which no tree here has. That costs more than the rest of a walk.
inline xercesc::DOMElement* firstElementChild(const xercesc::DOMNode& parent) noexcept {
    return elementFrom(parent.getFirstChild());
}

/// The first element among the siblings behind `node`; null without one.
inline xercesc::DOMElement* nextElementSibling(const xercesc::DOMNode& node) noexcept {
    return elementFrom(node.getNextSibling());
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
    for (xercesc::DOMElement* child = firstElementChild(parent); child;
         child = nextElementSibling(*child)) {
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
