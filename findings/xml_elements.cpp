#include "findings/xml_elements.h"

#include <libxml/tree.h>

namespace marrowpress {

_xmlNode* nextElement(_xmlNode& element) {
    if (xmlNode* const child = xmlFirstElementChild(&element)) {
        return child;
    }
    for (xmlNode* node = &element; node; node = node->parent) {
        if (xmlNode* const next = xmlNextElementSibling(node)) {
            return next;
        }
    }
    return nullptr;
}

std::string tagNameOf(const _xmlNode& element) {
    const auto* const name = reinterpret_cast<const char*>(element.name);
    if (!element.ns || !element.ns->prefix) {
        return name;
    }
    return reinterpret_cast<const char*>(element.ns->prefix) + std::string(":") + name;
}

}  // namespace marrowpress
