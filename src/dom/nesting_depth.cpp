#include "dom/nesting_depth.h"

namespace marrowpress {

bool isNestedTooDeeply(const xercesc::DOMElement* root) {
    std::size_t depth = 1;
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

}  // namespace marrowpress
