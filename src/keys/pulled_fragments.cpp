#include "keys/pulled_fragments.h"

#include "references/element_walker.h"
#include "references/node_filters.h"

namespace marrowpress {

using xercesc::DOMElement;
using xercesc::DOMNode;

void PulledFragments::pull(DOMElement& reference, const xercesc::DOMDocument& target,
                           std::u16string_view id) {
    const Fragment fragment{&target, std::u16string(id)};
    const AttrBasedElementNodeFilter withId(u"id", fragment.id);
    const DOMElement* const element = ElementWalker(target.getDocumentElement(), withId).nextNode();
    // A document has room for one element only.
    DOMNode* const parent = reference.getParentNode();
    const bool hasRoom = parent && parent->getNodeType() == DOMNode::ELEMENT_NODE;
    if (!element || !hasRoom || standsInside(reference, *element, fragment)) {
        return;
    }
    DOMNode* const copy = reference.getOwnerDocument()->importNode(element, true);
    parent->insertBefore(copy, reference.getNextElementSibling());
    copies_.emplace(copy, fragment);
}

bool PulledFragments::standsInside(const DOMElement& reference, const DOMElement& element,
                                   const Fragment& fragment) const {
    for (const DOMNode* node = &reference; node; node = node->getParentNode()) {
        const auto copy = copies_.find(node);
        if (node == &element || (copy != copies_.end() && copy->second == fragment)) {
            return true;
        }
    }
    return false;
}

}  // namespace marrowpress
