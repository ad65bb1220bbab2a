#pragma once

#include <unordered_map>
#include <vector>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "profiling/condition_merge.h"
#include "publish/composite_doc_node_filter.h"
#include "references/conref_resolution.h"
#include "references/direct_references.h"
#include "references/keyref_resolution.h"
#include "references/node_filters.h"
#include "references/topic_ids.h"

namespace marrowpress {

struct CopyCause;
struct DitaReference;

/// Appends an empty topic with a title and a new id to `parent`, and gives it.
xercesc::DOMElement& createTopicShell(xercesc::DOMElement& parent);

/// One walk over the references of a map, and of the maps that it refers to,
/// that appends the topics to an output document.
///
/// A loop over a stack of its own: how deep references nest is up to the maps.
class TopicrefWalk {
public:
    /// All arguments must outlive the walk. `filter` says what goes into the output, `topicIds`
    /// learns where the topics have gone, and `conditions` gather the conditional text of the
    /// sources.
    TopicrefWalk(const CompositeDocNodeFilter& filter, KeySpace& keySpace, TopicIdMap& topicIds,
                 ConditionMergeState& conditions)
        : filter_(filter), keySpace_(keySpace), topicIds_(topicIds), conditions_(conditions) {}

    /// Walks from `start`, which may be null; its topics become children of `parent`.
    void run(xercesc::DOMElement& parent, xercesc::DOMElement* start);

private:
    /// An element to visit and the element that its topics go into. Without an element: the
    /// innermost map has been walked to its end.
    struct Step {
        xercesc::DOMElement* node;
        xercesc::DOMElement* parent;
    };

    void visit(xercesc::DOMElement& node, xercesc::DOMElement& parent);
    void visitReference(xercesc::DOMElement& node, xercesc::DOMElement& parent);
    void visitChildren(const xercesc::DOMElement& node, xercesc::DOMElement& parent);

    xercesc::DOMElement& appendHead(const xercesc::DOMElement& node,
                                    xercesc::DOMElement& parent) const;
    xercesc::DOMElement& appendTopicDocument(xercesc::DOMElement& parent,
                                             const xercesc::DOMElement& node,
                                             const DitaReference& reference);
    xercesc::DOMElement* appendTopicSubtree(xercesc::DOMElement& element,
                                            xercesc::DOMElement& parent, const CopyCause& cause);
    bool hasMarkersBeside(const xercesc::DOMNode& node, const xercesc::DOMElement& parent);
    void carryMarkersInFrontOf(const xercesc::DOMNode& node, xercesc::DOMElement& parent);
    void carryMarkersBehind(const xercesc::DOMNode& node, xercesc::DOMElement& parent);
    xercesc::DOMNode* importTopicNode(const xercesc::DOMDocument& source, xercesc::DOMNode& node,
                                      xercesc::DOMElement& parent, const CopyCause& cause);
    void gatherConditions(xercesc::DOMElement& root, const xercesc::DOMElement& parent);
    void appendNestedMap(xercesc::DOMElement& parent, const xercesc::DOMElement& node,
                         const DitaReference& reference);
    bool isOpen(const xercesc::DOMDocument& map) const;

    const CompositeDocNodeFilter& filter_;
    KeySpace& keySpace_;
    TopicIdMap& topicIds_;
    ConditionMergeState& conditions_;
    TopicheadNodeFilter topicheadFilter_;
    DitabaseNodeFilter ditabaseFilter_;
    ReferenceNormalizer normalizer_;
    KeyrefProcessor keyrefs_;
    ConrefProcessor conrefs_;
    CondStartEndTagFilter markers_;
    /// Whether start and end tags of conditional text are among the children of a source's node.
    std::unordered_map<const xercesc::DOMNode*, bool> hasMarkers_;
    std::vector<Step> steps_;  ///< what is still to do, the next on top
    std::vector<const xercesc::DOMDocument*> openMaps_;
};

}  // namespace marrowpress
