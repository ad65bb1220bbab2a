#pragma once

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "references/direct_references.h"
#include "references/keyref_resolution.h"
#include "references/node_filters.h"

namespace marrowpress {

/// Replaces content references by what they refer to. Keeps nothing from one
/// call to the next.
///
/// An element with a "conref" keeps its name and place, and gets the content
/// of its target and those attributes that it doesn't have. A "conrefend" adds
/// the target's siblings up to that element behind it. What comes from another
/// file is normalised, and its keys resolved, at once. References in what was
/// copied are followed in the same walk.
///
/// A target that isn't found is reported, and the element keeps its content.
/// So it is with a reference that would copy itself without end, or elements that nest too deeply
/// to be copied: message 109. A member of a range that nests too deeply is left out alone.
/// While the target's file can't be loaded, the reference stays.
class ConrefProcessor {
public:
    /// Resolves below and including `root`, which may be null. `topicIds` learns the topics that
    /// come along. Documents that are copied from are not changed.
    void resolveConrefs(xercesc::DOMElement* root, KeySpace& keySpace, TopicIdMap& topicIds) const;

private:
    ConrefAttrContainingNodeFilter conrefFilter_;
    ReferenceNormalizer normalizer_;
    KeyrefProcessor keyrefs_;
    ReferenceUpdater updater_;

    friend class ConrefWalk;
};

}  // namespace marrowpress
