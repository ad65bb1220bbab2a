#include "dom/nesting_depth.h"

#include <vector>

#include "dom/nodes.h"

namespace marrowpress {
namespace {

/// Whether elements below `root` nest deeper than the deepest nesting, where it has `depth` itself.
bool nestsTooDeeplyFrom(std::size_t depth, const xercesc::DOMElement* root) {
    if (root && depth > kDeepestNesting) {
        return true;
    }
    // The path to the element that is looked at.
    std::vector<const xercesc::DOMElement*> path;
    for (const xercesc::DOMElement* element = root; element;) {
        if (const xercesc::DOMElement* const child = firstElementChild(*element)) {
            path.push_back(element);
            if (depth + path.size() > kDeepestNesting) {
                return true;
            }
            element = child;
            continue;
        }
        // The root's own siblings are none of its subtree.
        const xercesc::DOMElement* sibling = path.empty() ? nullptr : nextElementSibling(*element);
        while (!sibling && path.size() > 1) {
            sibling = nextElementSibling(*path.back());
            path.pop_back();
        }
        element = sibling;
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
