#include "references/conref_attributes.h"

#include <string>
#include <string_view>
#include <xercesc/dom/DOMNamedNodeMap.hpp>

#include "dom/attributes.h"
#include "references/node_filters.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;

/// Whether the "href" of `source` counts whatever the other side has.
bool hasOverridingHref(const DOMElement& source) {
    static const ImageNodeFilter image;
    static const LinkNodeFilter link;
    static const XrefNodeFilter xref;
    return selects(image, &source) || selects(link, &source) || selects(xref, &source);
}

bool isTaken(const DOMElement& destination, const DOMElement& source, const XMLCh* name) {
    const std::u16string_view attribute = domText(name);
    if (attribute == u"id" || attribute == u"class") {
        return false;
    }
    if (attribute == u"href" && hasOverridingHref(source)) {
        return true;
    }
    const std::u16string_view present = attributeView(destination, name);
    return present.empty() || present == u"-dita-use-conref-target";
}

}  // namespace

void mergeAttributes(DOMElement& destination, const DOMElement& source) {
    const xercesc::DOMNamedNodeMap& attributes = *source.getAttributes();
    for (XMLSize_t index = 0; index < attributes.getLength(); ++index) {
        const DOMNode& attribute = *attributes.item(index);
        const std::u16string value(domText(attribute.getNodeValue()));
        if (!value.empty() && isTaken(destination, source, attribute.getNodeName())) {
            destination.setAttribute(attribute.getNodeName(), value.c_str());
        }
    }
}

}  // namespace marrowpress
