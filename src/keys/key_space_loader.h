#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "references/direct_references.h"
#include "references/ditamap_ref_node_filter.h"
#include "references/key_space.h"
#include "references/node_filters.h"
#include "references/topic_ids.h"

namespace marrowpress {

/// Builds the key space document of a run: a map with one definition for each
/// key that the root map and all maps that it reaches define.
///
/// A definition is a child of the document element: a copy of the element that
/// defined the key, normalised, with the one key name as its "keys", which is
/// an ID, so that `getElementById` finds it. Of two definitions of a key the
/// first counts: maps are read breadth first, each in document order. There is
/// one flat name space, and names differ by case.
///
/// Reading changes the maps: a reference to part of a map is replaced by a copy
/// of that part, which later steps see in its place.
class KeySpaceLoader {
public:
    /// Writes the empty document, reads it back through the `DocumentStore`, which owns it, and
    /// fills it from the map; references inside it are resolved. All texts are UTF-16 paths,
    /// `dtdPath` the system identifier of its doctype.
    ///
    /// @throws PublishException when the document, the root map or a map that is referred to can't
    ///         be loaded.
    KeySpace load(const std::u16string& mapPath, const std::u16string& keySpaceDocPath,
                  TopicIdMap& topicIds, const std::u16string& dtdPath);

private:
    void gatherKeys(xercesc::DOMDocument& map, KeySpace& keySpace, TopicIdMap& topicIds);
    std::vector<xercesc::DOMDocument*> followMapReferences(xercesc::DOMDocument& map);
    void collectKeys(xercesc::DOMDocument& map, KeySpace& keySpace, TopicIdMap& topicIds) const;
    void addDefinition(const xercesc::DOMElement& element, std::u16string_view keyName,
                       const xercesc::DOMDocument& map, KeySpace& keySpace,
                       TopicIdMap& topicIds) const;

    KeyDefinitionNodeFilter definitionFilter_;
    DitamapRefNodeFilter mapRefFilter_;
    ReferenceNormalizer normalizer_;
    std::unordered_set<std::u16string> visitedDocuments_;  ///< by URI
};

}  // namespace marrowpress
