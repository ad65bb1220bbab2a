#include "references/key_definitions.h"

#include "application/messengers.h"
#include "application/run_observer.h"
#include "dom/attributes.h"
#include "dom/copies.h"
#include "dom/nesting_depth.h"
#include "dom/nodes.h"
#include "references/document_kind.h"
#include "references/exclusion_filter.h"
#include "references/key_space.h"
#include "references/node_filters.h"
#include "support/hrefs.h"
#include "support/publish_exception.h"
#include "support/xerces_ptr.h"
#include "xml/document_store.h"
#include "xml/dom_parser.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

/// The element in a definition's `meta` whose children are its text; null if there is none.
const DOMElement* textSource(const DOMElement& meta, bool declaresHref) {
    if (!declaresHref) {
        const DOMElement* const keywords = findChildByTag(u"keywords", meta);
        const DOMElement* const keyword =
            keywords ? findChildByTag(u"keyword", *keywords) : nullptr;
        if (keyword) {
            return keyword;
        }
    }
    const DOMElement* const linktext = findChildByTag(u"linktext", meta);
    return linktext ? linktext : findChildByTag(u"navtitle", meta);
}

/// The element whose children `element` gets from `definition`; null if there is none.
const DOMElement* contentSource(const DOMElement& element, const DOMElement& definition,
                                bool declaresHref) {
    static const TopicmetaNodeFilter topicmetas;
    static const TopicrefNodeFilter topicrefs;
    const DOMElement* const meta = firstElementChild(definition);
    if (!selects(topicmetas, meta)) {
        return nullptr;
    }
    if (const DOMElement* const same = findChildByTag(domText(element.getTagName()), *meta)) {
        return same;
    }
    if (declaresHref && selects(topicrefs, &element)) {
        return &definition;
    }
    return textSource(*meta, declaresHref);
}

/// The element at which the key reference of `reference` is written: what a content reference gave
/// to an element was written elsewhere.
const DOMElement& writerOf(const DOMElement& reference) {
    const RunObserver* const observer = RunObserver::existing();
    if (!observer) {
        return reference;
    }
    for (const std::u16string_view attribute : {u"keyref", u"conkeyref", u"datakeyref"}) {
        const DOMElement& writer = observer->writerOf(reference, attribute);
        if (&writer != &reference) {
            return writer;
        }
    }
    return reference;
}

/// Whether it is the name that the end of a chain leaves, or the marker of what is dealt with.
bool isNobodysKey(std::u16string_view keyName) {
    return keyName.empty() || keyName == kIgnoreKeyref;
}

void reportKeyNotFound(std::u16string_view keyName, const DOMElement& reference) {
    ReportMessenger::instance().reportKeyNotFound(keyName, &writerOf(reference),
                                                  isNobodysKey(keyName));
}

/// Tells that `reference`, or what gave it its reference, uses the key.
void observeKeyReference(std::u16string_view keyName, const DOMElement& reference) {
    RunObserver* const observer = RunObserver::existingForReferences();
    if (observer && !isNobodysKey(keyName)) {
        observer->keyReference(keyName, writerOf(reference), isInExcluded(reference));
    }
}

/// A link with an element part says itself where in the definition's file it leads.
void observeKeyLink(const DOMElement& element, const DOMElement& definition,
                    std::u16string_view keyReference) {
    RunObserver* const observer = RunObserver::existing();
    if (observer && keyNameOf(keyReference).size() == keyReference.size()) {
        observer->noteKeyLink(element, definition);
    }
}

/// Tells what of the definition's link does not come to `element`.
void observeLink(RunObserver& observer, const DOMElement& element, const DOMElement& definition,
                 std::u16string_view keyName, bool declaresHref) {
    const bool isInDefinition = element.getOwnerDocument() == definition.getOwnerDocument();
    if (isInDefinition && !declaresHref) {
        observer.fault(
            {.code = FaultCode::kKeyLinkDropped, .element = &element, .target = keyName});
    }
    const bool isWebLink = isExternalUri(attributeView(definition, u"href"));
    if (!isInDefinition && declaresHref && isWebLink && !element.hasAttribute(u"scope")) {
        observer.fault(
            {.code = FaultCode::kNoEffect, .element = &element, .target = u"key-scope-format"});
    }
}

}  // namespace

std::u16string_view keyNameOf(std::u16string_view keyReference) {
    return keyReference.substr(0, keyReference.find(u'/'));
}

std::u16string effectiveKeyHref(std::u16string_view keyReference,
                                std::u16string_view definitionHref, const DOMElement& reference) {
    std::u16string href(definitionHref);
    const std::size_t slash = keyReference.find(u'/');
    if (slash == std::u16string_view::npos) {
        return href;
    }
    const std::u16string_view elementPart = keyReference.substr(slash);
    if (href.find(u'#') != std::u16string::npos) {
        return href.append(elementPart);
    }
    const bool isMap = classifyDocument(DocumentStore::instance().getOrLoad(href, &reference)) ==
                       DitaDocKind::DitaDocMap;
    // An id in a map stands where the topic id of a topic would; "." is a file's first topic.
    return isMap ? href.append(u"#").append(elementPart.substr(1))
                 : href.append(u"#.").append(elementPart);
}

std::u16string resolveKeyHref(const KeySpace& keySpace, std::u16string_view keyReference,
                              const DOMElement& reference) {
    const std::u16string_view keyName = keyNameOf(keyReference);
    if (keyName.empty()) {
        return {};
    }
    observeKeyReference(keyName, reference);
    const DOMElement* const definition = keySpace.find(keyName, reference);
    if (!definition) {
        reportKeyNotFound(keyName, reference);
        return {};
    }
    observeKeyLink(reference, *definition, keyReference);
    return effectiveKeyHref(keyReference, attributeView(*definition, u"href"), reference);
}

const DOMElement* applyKeyDefinition(DOMElement& element, const DOMElement* definition,
                                     const ParserBundle& dtd, KeyContent content) {
    const std::u16string keyReference = attributeOf(element, u"keyref");
    observeKeyReference(keyNameOf(keyReference), element);
    const DOMElement* source = nullptr;
    if (definition) {
        const bool declaresHref = dtd.parser().declaresAttribute(element.getTagName(), u"href");
        if (content == KeyContent::kPull && !element.hasChildNodes()) {
            source = pullKeyContent(element, *definition, declaresHref);
        }
        const std::u16string href = attributeOf(*definition, u"href");
        if (declaresHref && !href.empty()) {
            element.setAttribute(u"href", effectiveKeyHref(keyReference, href, element).c_str());
            observeKeyLink(element, *definition, keyReference);
        }
        if (RunObserver* const observer = RunObserver::existing(); observer && !href.empty()) {
            observeLink(*observer, element, *definition, keyNameOf(keyReference), declaresHref);
        }
    } else {
        reportKeyNotFound(keyNameOf(keyReference), element);
    }
    element.removeAttribute(u"keyref");
    return source;
}

const DOMElement* pullKeyContent(DOMElement& element, const DOMElement& definition,
                                 bool declaresHref) {
    const DOMElement* const source = contentSource(element, definition, declaresHref);
    if (source) {
        // The source's content becomes the element's.
        if (wouldNestTooDeeply(element.getParentNode(), *source)) {
            throw PublishException();
        }
        appendCopies(element, childrenOf(*source),
                     {&element, u"keyref", attributeView(element, u"keyref")});
    }
    return source;
}

std::u16string keyTextOf(const DOMElement& definition) {
    static const TopicmetaNodeFilter topicmetas;
    const DOMElement* const meta = firstElementChild(definition);
    const DOMElement* const source =
        selects(topicmetas, meta) ? textSource(*meta, /*declaresHref=*/false) : nullptr;
    return source ? std::u16string(domText(source->getTextContent())) : std::u16string();
}

DOMElement* findChildByTag(std::u16string_view tagName, const DOMElement& parent) {
    const ElemTagBasedElementNodeFilter filter{std::u16string(tagName)};
    DOMElement* child = firstElementChild(parent);
    while (child && !selects(filter, child)) {
        child = nextElementSibling(*child);
    }
    return child;
}

}  // namespace marrowpress
