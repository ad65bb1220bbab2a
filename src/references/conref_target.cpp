#include "references/conref_target.h"

#include <algorithm>
#include <utility>

#include "application/messengers.h"
#include "dom/attributes.h"
#include "dom/copies.h"
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
    DOMElement* const element = findInside(*container, parts->elementId, tagName);
    if (!element) {
        ReportMessenger::instance().reportElementInTopicNotFound(
            tagName, parts->elementId, parts->topicId, document, &reference);
    }
    return element;
}

DOMElement* ConrefTargets::findInside(DOMElement& container, std::u16string_view id,
                                      std::u16string_view tagName) {
    const auto [known, isFirstSearch] = known_.try_emplace(&container);
    const std::u16string elementId(id);
    if (isFirstSearch || changed_.contains(elementId)) {
        return search(container, elementId, tagName);
    }
    if (known->second.empty()) {
        known->second = idsIn(container);
    }
    const auto elements = known->second.find(elementId);
    if (elements == known->second.end()) {
        return nullptr;
    }
    const auto found = std::find_if(
        elements->second.begin(), elements->second.end(),
        [&](const DOMElement* element) { return domText(element->getTagName()) == tagName; });
    return found == elements->second.end() ? nullptr : *found;
}

DOMElement* ConrefTargets::search(DOMElement& container, std::u16string_view elementId,
                                  std::u16string_view tagName) {
    DOMElement* element = &container;
    for (; element; element = nextInSubtree(element, container)) {
        ++searched_;
        if (attributeView(*element, u"id") == elementId &&
            domText(element->getTagName()) == tagName) {
            break;
        }
    }
    return element;
}

ConrefTargets::Ids ConrefTargets::idsIn(DOMElement& container) {
    Ids ids;
    for (DOMElement* element = &container; element; element = nextInSubtree(element, container)) {
        ++searched_;
        if (std::u16string id = attributeOf(*element, u"id"); !id.empty()) {
            ids[std::move(id)].push_back(element);
        }
    }
    return ids;
}

void ConrefTargets::noteChange(DOMElement& root) {
    for (DOMElement* element = &root; element; element = nextInSubtree(element, root)) {
        if (std::u16string id = attributeOf(*element, u"id"); !id.empty()) {
            changed_.insert(std::move(id));
        }
    }
}

std::size_t ConrefTargets::takeSearched() noexcept {
    return std::exchange(searched_, 0);
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
