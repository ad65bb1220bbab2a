#include "publish/left_conrefs.h"

#include <algorithm>
#include <string>
#include <vector>

#include "application/run_observer.h"
#include "dom/attributes.h"
#include "references/conref_target.h"
#include "references/direct_references.h"
#include "references/key_definitions.h"
#include "references/key_space.h"
#include "support/hrefs.h"
#include "xml/document_store.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;

/// The content reference of `element`, absolute, that by a key too; empty without one.
std::u16string conrefOf(const DOMElement& element, const KeySpace& keySpace) {
    const DOMDocument& document = *element.getOwnerDocument();
    const std::u16string conref = attributeOf(element, u"conref");
    if (!conref.empty()) {
        return makeAbsoluteHref(conref, document);
    }
    const std::u16string conkeyref = attributeOf(element, u"conkeyref");
    const DOMElement* const definition =
        conkeyref.empty() ? nullptr : keySpace.find(keyNameOf(conkeyref), element);
    const std::u16string href = definition ? attributeOf(*definition, u"href") : std::u16string();
    // Nothing may be loaded for the observer's sake.
    const bool isLoaded = DocumentStore::instance().holds(std::u16string(splitHref(href).path));
    return isLoaded ? effectiveKeyHref(conkeyref, href, element) : std::u16string();
}

/// What stands at `conref`, if its file is loaded.
const DOMElement* elementAt(const std::u16string& conref) {
    const HrefParts parts = splitHref(conref);
    const std::u16string path(parts.path);
    DocumentStore& store = DocumentStore::instance();
    return store.holds(path) ? elementOf(*store.getOrLoad(path), parts) : nullptr;
}

/// The places of the references from `element` on. Where they lead in a ring the first of it comes
/// again at the end. Empty when they lead to a file that could not be read.
std::vector<SourcePlace> wayFrom(const RunObserver& observer, const KeySpace& keySpace,
                                 const DOMElement& element) {
    const SourcePlaces& places = *SourcePlaces::existing();
    std::vector<SourcePlace> way;
    const DOMElement* reference = &element;
    while (reference) {
        const SourcePlace place = places.placeOf(*reference);
        const bool isRing = std::find(way.begin(), way.end(), place) != way.end();
        const DOMElement* next = observer.conrefTargetAt(place);
        const std::u16string conref = next ? std::u16string() : conrefOf(*reference, keySpace);
        if (!next && conref.empty()) {
            return way;
        }
        way.push_back(place);
        if (isRing) {
            return way;
        }
        if (!next && observer.isUnread(std::u16string(splitHref(conref).path))) {
            return {};
        }
        reference = next ? next : elementAt(conref);
    }
    return way;
}

}  // namespace

void observeLeftConref(RunObserver& observer, const KeySpace& keySpace, const DOMElement& element) {
    const std::u16string left = attributeOf(element, u"conref");
    const std::u16string taken = observer.takenConrefOf(element);
    std::vector<SourcePlace> way = wayFrom(observer, keySpace, element);
    if (way.empty()) {
        return;
    }
    const auto ring = std::find(way.begin(), way.end() - 1, way.back());
    if (ring == way.end() - 1) {
        observer.fault({.code = FaultCode::kConrefOfConref,
                        .element = &element,
                        .target = taken.empty() ? left : taken,
                        .detail = left});
        return;
    }
    const bool isPartOfIt = ring == way.begin();
    observer.fault({.code = FaultCode::kConrefLoop,
                    .element = &element,
                    .target = taken.empty() ? left : taken,
                    .place = isPartOfIt ? SourcePlace() : *ring,
                    .related = std::vector<SourcePlace>(ring, way.end() - 1)});
}

}  // namespace marrowpress
