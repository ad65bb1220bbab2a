#include "references/conref_target.h"

#include "application/messengers.h"
#include "dom/attributes.h"
#include "dom/element_walker.h"
#include "dom/nodes.h"
#include "references/document_kind.h"
#include "references/node_filters.h"
#include "support/hrefs.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;

DOMElement* firstTopicWithId(const DOMDocument& document) {
    static const TopicNodeFilter topics;
    ElementWalker walker(document.getDocumentElement(), topics);
    DOMElement* topic = walker.nextNode();
    while (topic && attributeView(*topic, u"id").empty()) {
        topic = walker.nextNode();
    }
    return topic;
}

/// The topic, or in a map the element, that `topicId` names.
DOMElement* findContainer(const DOMDocument& document, std::u16string_view topicId) {
    if (topicId == u".") {
        return firstTopicWithId(document);
    }
    const std::u16string id(topicId);
    if (classifyDocument(&document) == DitaDocKind::DitaDocMap) {
        const AttrBasedElementNodeFilter withId(u"id", id);
        return ElementWalker(document.getDocumentElement(), withId).nextNode();
    }
    return document.getElementById(id.c_str());
}

}  // namespace

DOMElement* ConrefTargets::find(const DOMDocument& document, const HrefParts* parts,
                                const DOMElement& reference) {
    if (!parts) {
        return nullptr;
    }
    const std::u16string_view tagName = domText(reference.getTagName());
    DOMElement* const container = findContainer(document, parts->topicId);
    const bool isContainerMeant = parts->elementId.empty();
    if (!container || (isContainerMeant && domText(container->getTagName()) != tagName)) {
        ReportMessenger::instance().reportElementNotFound(tagName, parts->topicId, document,
                                                          &reference);
        return nullptr;
    }
    if (isContainerMeant) {
        return container;
    }
    DOMElement* const element = ids_.find(*container, parts->elementId, tagName);
    if (!element) {
        ReportMessenger::instance().reportElementInTopicNotFound(
            tagName, parts->elementId, parts->topicId, document, &reference);
    }
    return element;
}

DOMElement* elementOf(const DOMDocument& document, const HrefParts& parts) {
    DOMElement* const container = findContainer(document, parts.topicId);
    if (!container || parts.elementId.empty()) {
        return container;
    }
    const AttrBasedElementNodeFilter withId(u"id", std::u16string(parts.elementId));
    return ElementWalker(container, withId).nextNode();
}

std::u16string topicIdAround(const DOMDocument& document, std::u16string_view id) {
    static const TopicNodeFilter topics;
    const AttrBasedElementNodeFilter withId(u"id", std::u16string(id));
    ElementWalker walker(document.getDocumentElement(), withId);
    const DOMElement* element = walker.nextNode();
    while (element && selects(topics, element)) {
        element = walker.nextNode();
    }
    while (element && !selects(topics, element)) {
        element = asElement(element->getParentNode());
    }
    return element ? attributeOf(*element, u"id") : std::u16string();
}

}  // namespace marrowpress
