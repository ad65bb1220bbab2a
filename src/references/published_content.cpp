#include "references/published_content.h"

#include "dom/attributes.h"
#include "dom/nodes.h"
#include "references/document_kind.h"
#include "references/exclusion_filter.h"
#include "references/node_filters.h"

namespace marrowpress {

using xercesc::DOMElement;
using xercesc::DOMNode;

bool isPublished(const DOMElement& element) {
    static const TopicNodeFilter topics;
    static const ReltableNodeFilter reltables;
    const bool isInMap = classifyDocument(element.getOwnerDocument()) == DitaDocKind::DitaDocMap;
    const DOMNode* node = &element;
    while (const DOMElement* const around = asElement(node)) {
        if (isExcluded(*around) ||
            (isInMap && (selects(reltables, around) || selects(topics, around)))) {
            return false;
        }
        node = around->getParentNode();
    }
    // What was taken out ends below the document.
    return node;
}

bool isLeftOutOfPrint(const DOMElement& element) {
    if (classifyDocument(element.getOwnerDocument()) != DitaDocKind::DitaDocMap) {
        return false;
    }
    for (const DOMElement* around = &element; around && attributeView(*around, u"keys").empty();
         around = asElement(around->getParentNode())) {
        if (attributeView(*around, u"print") == u"no") {
            return true;
        }
    }
    return false;
}

}  // namespace marrowpress
