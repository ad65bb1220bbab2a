#include "keys/key_space_loader.h"

#include <queue>
#include <vector>

#include "keys/pulled_fragments.h"
#include "profiling/ditaval_filters.h"
#include "references/conref_resolution.h"
#include "references/element_walker.h"
#include "references/keyref_resolution.h"
#include "references/reference_resolution.h"
#include "support/dom_attributes.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "xml/document_store.h"
#include "xml/document_writer.h"

namespace marrowpress {

using xercesc::DOMDocument;
using xercesc::DOMElement;

DOMDocument& KeySpaceLoader::load(const std::u16string& mapPath,
                                  const std::u16string& keySpaceDocPath, TopicIdMap& topicIds,
                                  const std::u16string& dtdPath) {
    // A failure is reported; the document can't be loaded then.
    static_cast<void>(
        writeEmptyDocument("map", "-//OASIS//DTD DITA Map//EN", toUtf8(dtdPath), keySpaceDocPath));
    DOMDocument& keySpace = DocumentStore::instance().mustLoad(keySpaceDocPath);
    mapRefFilter_.setContext(&keySpace);
    gatherKeys(DocumentStore::instance().mustLoad(mapPath), keySpace, topicIds);
    removeExcludedElements(keySpace);
    DOMElement* const root = keySpace.getDocumentElement();
    KeyrefProcessor().resolveAllKeyrefs(root, keySpace);
    ConrefProcessor().resolveConrefs(root, keySpace, topicIds);
    return keySpace;
}

void KeySpaceLoader::gatherKeys(DOMDocument& map, DOMDocument& keySpace, TopicIdMap& topicIds) {
    std::queue<DOMDocument*> maps({&map});
    visitedDocuments_.emplace(domText(map.getDocumentURI()));
    for (; !maps.empty(); maps.pop()) {
        for (DOMDocument* const referred : followMapReferences(*maps.front())) {
            maps.push(referred);
        }
        collectKeys(*maps.front(), keySpace, topicIds);
    }
}

/// Gives the maps that `map` refers to as a whole and that no map before it did, and pulls into
/// it what it refers to in part.
std::vector<DOMDocument*> KeySpaceLoader::followMapReferences(DOMDocument& map) {
    std::vector<DOMDocument*> referred;
    std::vector<DOMElement*> replaced;
    PulledFragments fragments;
    ElementWalker walker(map.getDocumentElement(), mapRefFilter_);
    while (DOMElement* const reference = walker.nextNode()) {
        const std::u16string href = attributeOf(*reference, u"href");
        const HrefParts parts = splitHref(href);
        DOMDocument& target = DocumentStore::instance().mustLoad(toAbsolutePath(parts.path, map));
        if (!parts.topicId.empty()) {
            fragments.pull(*reference, target, parts.topicId);
            replaced.push_back(reference);
        } else if (visitedDocuments_.emplace(domText(target.getDocumentURI())).second &&
                   classifyDocument(&target) == DitaDocKind::DitaDocMap) {
            referred.push_back(&target);
        }
    }
    removeElements(replaced);
    return referred;
}

void KeySpaceLoader::collectKeys(DOMDocument& map, DOMDocument& keySpace,
                                 TopicIdMap& topicIds) const {
    ElementWalker walker(map.getDocumentElement(), definitionFilter_);
    while (const DOMElement* const element = walker.nextNode()) {
        const std::u16string keys = attributeOf(*element, u"keys");
        for (const std::u16string_view keyName : splitTokens(keys)) {
            addDefinition(*element, keyName, map, keySpace, topicIds);
        }
    }
}

/// Adds a definition of its own for `keyName`, unless there is one.
void KeySpaceLoader::addDefinition(const DOMElement& element, std::u16string_view keyName,
                                   const DOMDocument& map, DOMDocument& keySpace,
                                   TopicIdMap& topicIds) const {
    const std::u16string name(keyName);
    if (keySpace.getElementById(name.c_str())) {
        return;
    }
    auto* const copy = static_cast<DOMElement*>(keySpace.importNode(&element, true));
    normalizer_.normalizeSubtree(copy, map, topicIds);
    copy->setAttribute(u"keys", name.c_str());
    copy->setIdAttribute(u"keys", true);
    keySpace.getDocumentElement()->appendChild(copy);
}

}  // namespace marrowpress
