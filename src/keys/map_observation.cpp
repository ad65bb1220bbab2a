#include "keys/map_observation.h"

#include <string>
#include <string_view>

#include "application/run_observer.h"
#include "dom/attributes.h"
#include "dom/copies.h"
#include "profiling/ditaval_filters.h"
#include "references/direct_references.h"
#include "references/exclusion_filter.h"
#include "references/key_definitions.h"
#include "references/node_filters.h"
#include "support/text.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

bool isOf(const DOMElement& element, std::u16string_view classToken, std::u16string_view tagName) {
    const std::u16string_view classes = attributeView(element, u"class");
    return classes.empty() ? domText(element.getTagName()) == tagName
                           : classes.find(classToken) != std::u16string_view::npos;
}

void observeNoEffect(RunObserver& observer, const DOMElement& element, std::u16string_view what) {
    observer.fault({.code = FaultCode::kNoEffect, .element = &element, .target = what});
}

void observeElement(RunObserver& observer, const DOMElement& element) {
    const std::u16string_view scope = attributeView(element, u"keyscope");
    if (!scope.empty()) {
        observer.fault({.code = FaultCode::kKeyScope, .element = &element, .target = scope});
    }
    for (const XMLCh* const attribute : {u"conaction", u"copy-to", u"chunk"}) {
        if (!attributeView(element, attribute).empty()) {
            observeNoEffect(observer, element, attribute);
        }
    }
    if (isOf(element, u" map/reltable ", u"reltable")) {
        // Artefacts are what stands in such a table, not the table itself.
        observer.fault({.code = FaultCode::kNoEffect,
                        .element = &element,
                        .target = u"reltable",
                        .outlivesElement = true});
    }
    if (isOf(element, u" ditavalref-d/ditavalref ", u"ditavalref")) {
        observeNoEffect(observer, element, u"ditavalref");
    }
    if (isOf(element, u" subjectScheme/subjectScheme ", u"subjectScheme")) {
        observeNoEffect(observer, element, u"subjectScheme");
    }
}

void observeExcludedKeys(RunObserver& observer, const DOMElement& element) {
    const std::u16string keys = attributeOf(element, u"keys");
    const std::u16string_view href = attributeView(element, u"href");
    const std::u16string target =
        href.empty() ? std::u16string() : makeAbsoluteHref(href, *element.getOwnerDocument());
    for (const std::u16string_view key : splitTokens(keys)) {
        observer.keyDefinition(key, target, KeyState::kExcluded, element);
        if (RunObserver* const references = RunObserver::existingForReferences()) {
            references->keyMeaning(key, target, keyTextOf(element), element);
        }
    }
}

/// The element behind all below `element`; null at the end.
DOMElement* nextBehind(DOMElement* element, const DOMElement& root) {
    while (element != &root) {
        if (DOMElement* const sibling = nextElementSibling(*element)) {
            return sibling;
        }
        element = static_cast<DOMElement*>(element->getParentNode());
    }
    return nullptr;
}

}  // namespace

void observeMap(RunObserver& observer, const xercesc::DOMDocument& map) {
    DOMElement* const root = map.getDocumentElement();
    if (!root) {
        return;
    }
    observeConditionValues(observer, map);
    const TopicNodeFilter topics;
    DOMElement* element = root;
    while (element) {
        if (isExcluded(*element)) {
            observeExcluded(observer, *element);
            for (DOMElement* inside = element; inside; inside = nextInSubtree(inside, *element)) {
                observeExcludedKeys(observer, *inside);
            }
            element = nextBehind(element, *root);
        } else if (selects(topics, element)) {
            // Content that a reference has pulled in: nothing of the map's own.
            element = nextBehind(element, *root);
        } else {
            observeElement(observer, *element);
            element = nextInSubtree(element, *root);
        }
    }
}

}  // namespace marrowpress
