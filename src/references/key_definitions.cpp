#include "references/key_definitions.h"

#include "client/messages.h"
#include "references/dom_children.h"
#include "references/node_filters.h"
#include "references/reference_resolution.h"
#include "support/dom_attributes.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "xml/document_store.h"
#include "xml/dom_parser.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::DOMNodeFilter;

bool isAcceptedBy(const DOMNodeFilter& filter, const DOMElement* element) {
    return filter.acceptNode(element) == DOMNodeFilter::FILTER_ACCEPT;
}

/// The element whose children `element` gets from `definition`; null if there is none.
const DOMElement* contentSource(const DOMElement& element, const DOMElement& definition,
                                bool declaresHref) {
    const DOMElement* const meta = definition.getFirstElementChild();
    if (!isAcceptedBy(TopicmetaNodeFilter(), meta)) {
        return nullptr;
    }
    if (const DOMElement* const same = findChildByTag(domText(element.getTagName()), *meta)) {
        return same;
    }
    if (declaresHref && isAcceptedBy(TopicrefNodeFilter(), &element)) {
        return &definition;
    }
    if (!declaresHref) {
        const DOMElement* const keywords = findChildByTag(u"keywords", *meta);
        const DOMElement* const keyword =
            keywords ? findChildByTag(u"keyword", *keywords) : nullptr;
        if (keyword) {
            return keyword;
        }
    }
    const DOMElement* const linktext = findChildByTag(u"linktext", *meta);
    return linktext ? linktext : findChildByTag(u"navtitle", *meta);
}

}  // namespace

std::u16string_view keyNameOf(std::u16string_view keyReference) {
    return keyReference.substr(0, keyReference.find(u'/'));
}

DOMElement* findKeyDefinition(const DOMDocument& keyDoc, std::u16string_view keyName) {
    return keyDoc.getElementById(std::u16string(keyName).c_str());
}

void reportKeyNotFound(std::u16string_view keyName) {
    ReportMessenger::instance().reportMessage(MessageId::kKeyNotFound, toUtf8(keyName));
}

std::u16string effectiveKeyHref(std::u16string_view keyReference,
                                std::u16string_view definitionHref) {
    std::u16string href(definitionHref);
    const std::size_t slash = keyReference.find(u'/');
    if (slash == std::u16string_view::npos) {
        return href;
    }
    const std::u16string_view elementPart = keyReference.substr(slash);
    if (href.find(u'#') != std::u16string::npos) {
        return href.append(elementPart);
    }
    const bool isMap =
        classifyDocument(DocumentStore::instance().getOrLoad(href)) == DitaDocKind::DitaDocMap;
    // An id in a map stands where the topic id of a topic would; "." is a file's first topic.
    return isMap ? href.append(u"#").append(elementPart.substr(1))
                 : href.append(u"#.").append(elementPart);
}

std::u16string resolveKeyHref(const DOMDocument& keyDoc, std::u16string_view keyReference) {
    const std::u16string_view keyName = keyNameOf(keyReference);
    if (keyName.empty()) {
        return {};
    }
    const DOMElement* const definition = findKeyDefinition(keyDoc, keyName);
    if (!definition) {
        reportKeyNotFound(keyName);
        return {};
    }
    return effectiveKeyHref(keyReference, attributeView(*definition, u"href"));
}

const DOMElement* applyKeyDefinition(DOMElement& element, const DOMElement* definition,
                                     const ParserBundle& dtd, KeyContent content) {
    const std::u16string keyReference = attributeOf(element, u"keyref");
    const DOMElement* source = nullptr;
    if (definition) {
        const bool declaresHref = dtd.parser().declaresAttribute(element.getTagName(), u"href");
        if (content == KeyContent::kPull && !element.hasChildNodes()) {
            source = pullKeyContent(element, *definition, declaresHref);
        }
        const std::u16string href = attributeOf(*definition, u"href");
        if (declaresHref && !href.empty()) {
            element.setAttribute(u"href", effectiveKeyHref(keyReference, href).c_str());
        }
    } else {
        reportKeyNotFound(keyNameOf(keyReference));
    }
    element.removeAttribute(u"keyref");
    return source;
}

const DOMElement* pullKeyContent(DOMElement& element, const DOMElement& definition,
                                 bool declaresHref) {
    const DOMElement* const source = contentSource(element, definition, declaresHref);
    if (source) {
        for (const DOMNode* const child : childrenOf(*source)) {
            element.appendChild(element.getOwnerDocument()->importNode(child, true));
        }
    }
    return source;
}

DOMElement* findChildByTag(std::u16string_view tagName, const DOMElement& parent) {
    const ElemTagBasedElementNodeFilter filter{std::u16string(tagName)};
    DOMElement* child = parent.getFirstElementChild();
    while (child && !isAcceptedBy(filter, child)) {
        child = child->getNextElementSibling();
    }
    return child;
}

}  // namespace marrowpress
