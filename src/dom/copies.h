#pragma once

#include <vector>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "dom/nodes.h"
#include "dom/source_places.h"

namespace marrowpress {

/// A copy of `node` with all below it for `document`, on account of `cause`; it has no parent yet.
/// Whoever copies a node with its content does it by this, so that it is known where the copy
/// comes from.
inline xercesc::DOMNode* importCopy(xercesc::DOMDocument& document, const xercesc::DOMNode& node,
                                    const CopyCause& cause) {
    xercesc::DOMNode* const copy = document.importNode(&node, true);
    if (SourcePlaces* const places = SourcePlaces::existing()) {
        places->recordCopy(node, *copy, cause);
    }
    return copy;
}

/// Appends to `target` copies of `nodes` with all below them, which may be of another document.
inline void appendCopies(xercesc::DOMElement& target, const std::vector<xercesc::DOMNode*>& nodes,
                         const CopyCause& cause) {
    for (const xercesc::DOMNode* const node : nodes) {
        target.appendChild(importCopy(*target.getOwnerDocument(), *node, cause));
    }
}

/// The element behind `element` in document order below `root`; null at the end.
inline xercesc::DOMElement* nextInSubtree(xercesc::DOMElement* element,
                                          const xercesc::DOMElement& root) {
    if (xercesc::DOMElement* const child = firstElementChild(*element)) {
        return child;
    }
    while (element != &root) {
        if (xercesc::DOMElement* const sibling = nextElementSibling(*element)) {
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
