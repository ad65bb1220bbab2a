#include "keys/key_space_loader.h"

#include <queue>
#include <vector>

#include "application/run_observer.h"
#include "dom/attributes.h"
#include "dom/copies.h"
#include "dom/document_path.h"
#include "dom/element_walker.h"
#include "dom/nesting_depth.h"
#include "keys/map_observation.h"
#include "keys/pulled_fragments.h"
#include "marrowpress/output_names.h"
#include "profiling/ditaval_filters.h"
#include "references/conref_resolution.h"
#include "references/document_kind.h"
#include "references/key_definitions.h"
#include "references/keyref_resolution.h"
#include "references/published_content.h"
#include "references/reference_paths.h"
#include "support/hrefs.h"
#include "support/publish_exception.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "xml/document_store.h"
#include "xml/document_writer.h"

namespace marrowpress {

using xercesc::DOMDocument;
using xercesc::DOMElement;

namespace {

void observeMapReference(const DOMElement& reference, const std::u16string& path) {
    if (RunObserver* const observer = RunObserver::existingForReferences()) {
        observer->fileReference(ReferenceKind::kMap, path, reference);
    }
}

/// Tells what is lost where the part `id` of `target` takes the place of `reference`.
void observePull(const DOMElement& reference, const DOMDocument& target, std::u16string_view id) {
    RunObserver* const observer = RunObserver::existing();
    if (!observer) {
        return;
    }
    const std::u16string href = documentPath(target).append(u"#").append(id);
    const bool isArtefact = !isPublished(reference);
    const std::u16string keys = attributeOf(reference, u"keys");
    for (const std::u16string_view key : splitTokens(keys)) {
        observer->keyDefinition(key, href, KeyState::kLost, reference);
        observer->fault({.code = FaultCode::kKeyDefinitionLost,
                         .element = &reference,
                         .target = key,
                         .detail = href,
                         .isArtefact = isArtefact,
                         .outlivesElement = true});
    }
    const AttrBasedElementNodeFilter withId(u"id", std::u16string(id));
    if (!ElementWalker(target.getDocumentElement(), withId).nextNode()) {
        observer->fault({.code = FaultCode::kFragmentNotFound,
                         .element = &reference,
                         .target = href,
                         .isArtefact = isArtefact,
                         .outlivesElement = true});
    }
}

/// Tells what a definition that doesn't count stands for, and to which file one that does leads, if
/// it isn't a reference of the map as well.
void observeDefinitionTarget(RunObserver& observer, const DOMElement& element,
                             std::u16string_view keyName, std::u16string_view target,
                             bool isShadowed) {
    if (isShadowed) {
        observer.keyMeaning(keyName, target, keyTextOf(element), element);
    } else if (!target.empty() && !isExternalUri(target) &&
               nearestAttribute(element, u"processing-role") == u"resource-only") {
        observer.fileReference(ReferenceKind::kKeyDefinition, splitHref(target).path, element);
    }
}

/// Tells what the definition of `keyName` in `map` is: whether it counts, and where it leads.
void observeDefinition(const DOMElement& element, std::u16string_view keyName,
                       const DOMDocument& map, bool isShadowed) {
    RunObserver* const observer = RunObserver::existing();
    if (!observer) {
        return;
    }
    const std::u16string_view href = attributeView(element, u"href");
    const std::u16string target = href.empty() ? std::u16string() : makeAbsoluteHref(href, map);
    observer->keyDefinition(keyName, target,
                            isShadowed ? KeyState::kShadowed : KeyState::kEffective, element);
    if (RunObserver* const references = RunObserver::existingForReferences()) {
        observeDefinitionTarget(*references, element, keyName, target, isShadowed);
    }
}

/// Tells what each definition that counts has become.
void observeMeanings(const KeySpace& keySpace) {
    RunObserver* const observer = RunObserver::existingForReferences();
    if (!observer) {
        return;
    }
    const DOMElement& root = *keySpace.document().getDocumentElement();
    for (const DOMElement* definition = firstElementChild(root); definition;
         definition = nextElementSibling(*definition)) {
        observer->keyMeaning(attributeView(*definition, u"keys"),
                             attributeView(*definition, u"href"), keyTextOf(*definition),
                             *definition);
    }
}

}  // namespace

KeySpace KeySpaceLoader::load(const std::u16string& mapPath, const std::u16string& keySpaceDocPath,
                              TopicIdMap& topicIds, const std::u16string& dtdPath) {
    // What matters is whether the document can be read back.
    goOnAfter(
        writeEmptyDocument(kKeySpaceRootName, kKeySpacePublicId, toUtf8(dtdPath), keySpaceDocPath));
    KeySpace keySpace(DocumentStore::instance().mustLoad(keySpaceDocPath));
    mapRefFilter_.setContext(&keySpace);
    gatherKeys(DocumentStore::instance().mustLoad(mapPath), keySpace, topicIds);
    removeExcludedElements(keySpace.document());
    DOMElement* const root = keySpace.document().getDocumentElement();
    KeyrefProcessor().resolveAllKeyrefs(root, keySpace);
    ConrefProcessor().resolveConrefs(root, keySpace, topicIds);
    observeMeanings(keySpace);
    mapRefFilter_.setContext(nullptr);
    return keySpace;
}

void KeySpaceLoader::gatherKeys(DOMDocument& map, KeySpace& keySpace, TopicIdMap& topicIds) {
    std::queue<DOMDocument*> maps({&map});
    visitedDocuments_.emplace(domText(map.getDocumentURI()));
    for (; !maps.empty(); maps.pop()) {
        for (DOMDocument* const referred : followMapReferences(*maps.front())) {
            maps.push(referred);
        }
        if (RunObserver* const observer = RunObserver::existing()) {
            observeMap(*observer, *maps.front());
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
        const std::u16string path = toAbsolutePath(parts.path, map);
        observeMapReference(*reference, path);
        DOMDocument& target = DocumentStore::instance().mustLoad(path, reference);
        if (!parts.topicId.empty()) {
            observePull(*reference, target, parts.topicId);
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

void KeySpaceLoader::collectKeys(DOMDocument& map, KeySpace& keySpace, TopicIdMap& topicIds) const {
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
                                   const DOMDocument& map, KeySpace& keySpace,
                                   TopicIdMap& topicIds) const {
    const bool isShadowed = keySpace.defines(keyName);
    observeDefinition(element, keyName, map, isShadowed);
    if (isShadowed) {
        return;
    }
    if (wouldNestTooDeeply(keySpace.document().getDocumentElement(), element)) {
        throw PublishException();
    }
    auto* const copy = static_cast<DOMElement*>(importCopy(keySpace.document(), element, {}));
    normalizer_.normalizeSubtree(copy, map, topicIds);
    keySpace.add(keyName, *copy);
}

}  // namespace marrowpress
