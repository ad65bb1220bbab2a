#pragma once

#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

/// The element behind `element` in document order below `root`; null at the end.
inline xercesc::DOMElement* nextInSubtree(xercesc::DOMElement* element,
                                          const xercesc::DOMElement& root) {
    if (xercesc::DOMElement* const child = element->getFirstElementChild()) {
        return child;
    }
    while (element != &root) {
        if (xercesc::DOMElement* const sibling = element->getNextElementSibling()) {
            return sibling;
        }
        element = static_cast<xercesc::DOMElement*>(element->getParentNode());
    }
    return nullptr;
}

/// Calls `action` with each element in the subtree of `original` and its counterpart in that of
/// `copy`, which has the same shape.
template <class Action>
void forEachCopiedElement(xercesc::DOMElement& original, xercesc::DOMElement& copy,
                          Action&& action) {
    xercesc::DOMElement* from = &original;
    xercesc::DOMElement* to = &copy;
    while (from && to) {
        action(*from, *to);
        from = nextInSubtree(from, original);
        to = nextInSubtree(to, copy);
    }
}

}  // namespace marrowpress
