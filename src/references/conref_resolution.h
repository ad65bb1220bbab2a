#pragma once

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

class TopicIdMap;

/// Replaces content references by what they refer to. None is resolved yet.
class ConrefProcessor {
public:
    /// `root` may be null.
    void resolveConrefs(xercesc::DOMElement* root, xercesc::DOMDocument& keyDoc,
                        TopicIdMap& topicIds) const;
};

}  // namespace marrowpress
