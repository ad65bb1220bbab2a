#include "references/conref_target.h"

#include <string>

#include "client/messages.h"
#include "references/element_walker.h"
#include "references/node_filters.h"
#include "references/reference_resolution.h"
#include "support/dom_attributes.h"
#include "support/text.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;

DOMElement* firstTopicWithId(const DOMDocument& document) {
    const TopicNodeFilter topics;
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

DOMElement* findInside(DOMElement& container, std::u16string_view elementId,
                       std::u16string_view tagName) {
    const AttrBasedElementNodeFilter withId(u"id", std::u16string(elementId));
    ElementWalker walker(&container, withId);
    DOMElement* element = walker.nextNode();
    while (element && domText(element->getTagName()) != tagName) {
        element = walker.nextNode();
    }
    return element;
}

}  // namespace

DOMElement* findConrefTarget(const DOMDocument& document, const HrefParts* parts,
                             std::u16string_view tagName) {
    if (!parts) {
        return nullptr;
    }
    DOMElement* const container = findContainer(document, parts->topicId);
    const bool isContainerMeant = parts->elementId.empty();
    if (!container || (isContainerMeant && domText(container->getTagName()) != tagName)) {
        reportElementNotFound(tagName, parts->topicId, document);
        return nullptr;
    }
    if (isContainerMeant) {
        return container;
    }
    DOMElement* const element = findInside(*container, parts->elementId, tagName);
    if (!element) {
        ReportMessenger::instance().reportElementInTopicNotFound(
            toUtf8(tagName), toUtf8(parts->elementId), toUtf8(parts->topicId),
            toUtf8(domText(document.getDocumentURI())));
    }
    return element;
}

void reportElementNotFound(std::u16string_view tagName, std::u16string_view id,
                           const DOMDocument& file) {
    ReportMessenger::instance().reportElementNotFound(toUtf8(tagName), toUtf8(id),
                                                      toUtf8(domText(file.getDocumentURI())));
}

}  // namespace marrowpress
