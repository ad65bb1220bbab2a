#include "dom/nesting_depth.h"

#include "dom/nodes.h"

namespace marrowpress {
namespace {

/// Whether elements below `root` nest deeper than the deepest nesting, where it has `depth` itself.
bool nestsTooDeeplyFrom(std::size_t depth, const xercesc::DOMElement* root) {
    if (root && depth > kDeepestNesting) {
        return true;
    }
    const xercesc::DOMElement* element = root;
    while (element) {
        if (const xercesc::DOMElement* const child = element->getFirstElementChild()) {
            if (++depth > kDeepestNesting) {
                return true;
            }
            element = child;
            continue;
        }
        while (element != root && !element->getNextElementSibling()) {
            element = static_cast<const xercesc::DOMElement*>(element->getParentNode());
            --depth;
        }
        element = element == root ? nullptr : element->getNextElementSibling();
    }
    return false;
}

}  // namespace

bool isNestedTooDeeply(const xercesc::DOMElement* root) {
    return nestsTooDeeplyFrom(1, root);
}

bool wouldNestTooDeeply(const xercesc::DOMNode* parent, const xercesc::DOMElement& element) {
    std::size_t depth = 1;
    for (const xercesc::DOMNode* node = asElement(parent); node;
         node = asElement(node->getParentNode())) {
        ++depth;
    }
    return nestsTooDeeplyFrom(depth, &element);
}

}  // namespace marrowpress
