#pragma once

#include <string>
#include <xercesc/dom/DOMDocument.hpp>

namespace marrowpress {

class TopicIdMap;

/// Builds the key space document of a run: a map that holds one definition for
/// each key that the root map and all it reaches define.
class KeySpaceLoader {
public:
    /// Writes the empty document, reads it back through the `DocumentStore`, and fills it from
    /// the map. All texts are UTF-16 paths, `dtdPath` the system identifier of its doctype.
    ///
    /// @throws PublishException when the key space document or the map can't be loaded.
    xercesc::DOMDocument& load(const std::u16string& mapPath, const std::u16string& keySpaceDocPath,
                               TopicIdMap& topicIds, const std::u16string& dtdPath) const;
};

}  // namespace marrowpress
