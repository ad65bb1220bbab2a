#pragma once

#include <string>
#include <string_view>
#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "dom/nodes.h"
#include "support/xerces_ptr.h"

namespace marrowpress {

/// The value of an attribute; a missing one reads as empty. The view ends when the attribute
/// changes.
inline std::u16string_view attributeView(const xercesc::DOMElement& element, const XMLCh* name) {
    return domText(element.getAttribute(name));
}

/// The value of the attribute of `element` or of the nearest element around it that has one that is
/// not empty; empty when none has.
inline std::u16string_view nearestAttribute(const xercesc::DOMElement& element, const XMLCh* name) {
    for (const xercesc::DOMElement* around = &element; around;
         around = asElement(around->getParentNode())) {
        const std::u16string_view value = attributeView(*around, name);
        if (!value.empty()) {
            return value;
        }
    }
    return {};
}

/// Whether the nearest "scope" of `reference` says that it leads out of the publication.
inline bool leadsElsewhere(const xercesc::DOMElement& reference) {
    const std::u16string_view scope = nearestAttribute(reference, u"scope");
    return scope == u"peer" || scope == u"external";
}

/// A copy of the value of an attribute; a missing one reads as empty.
inline std::u16string attributeOf(const xercesc::DOMElement& element, const XMLCh* name) {
    return std::u16string(attributeView(element, name));
}

/// Sets an attribute. Where it has a text of its own already that is changed in place, or stays:
/// the engine would take it out and put another one in, at four times the cost.
inline void setAttribute(xercesc::DOMElement& element, const XMLCh* name,
                         const std::u16string& value) {
    const xercesc::DOMAttr* const attribute = element.getAttributeNode(name);
    // A default that is set is specified, and so written, from then on; ids are indexed.
    const bool isPlain = attribute && attribute->getSpecified() && !attribute->isId();
    xercesc::DOMNode* const text = isPlain ? attribute->getFirstChild() : nullptr;
    if (!text || text->getNextSibling() || text->getNodeType() != xercesc::DOMNode::TEXT_NODE) {
        element.setAttribute(name, value.c_str());
    } else if (domText(text->getNodeValue()) != value) {
        text->setNodeValue(value.c_str());
    }
}

}  // namespace marrowpress
