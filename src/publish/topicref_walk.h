#pragma once

#include <vector>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

class CompositeDocAssembler;
struct CompositeDocRequest;
struct DitaReference;

/// Appends an empty topic with a title and a new id to `parent`, and gives it.
xercesc::DOMElement& createTopicShell(xercesc::DOMElement& parent);

/// One walk over the references of a map, and of the maps that it refers to,
/// that appends the topics to an output document.
///
/// A loop over a stack of its own: how deep references nest is up to the maps.
class TopicrefWalk {
public:
    /// All arguments must outlive the walk. The request's `idMap` learns where the topics have
    /// gone, and its `conditions` gather the conditional text of the sources.
    TopicrefWalk(const CompositeDocAssembler& assembler, xercesc::DOMDocument& keyDoc,
                 CompositeDocRequest& request)
        : assembler_(assembler), keyDoc_(keyDoc), request_(request) {}

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
                                             const xercesc::DOMElement& node);
    xercesc::DOMElement* appendTopicSubtree(xercesc::DOMElement& element,
                                            xercesc::DOMElement& parent);
    void carryMarkersInFrontOf(const xercesc::DOMNode& node, xercesc::DOMElement& parent);
    void carryMarkersBehind(const xercesc::DOMNode& node, xercesc::DOMElement& parent);
    xercesc::DOMNode* importTopicNode(const xercesc::DOMDocument& source, xercesc::DOMNode& node,
                                      xercesc::DOMElement& parent);
    void gatherConditions(xercesc::DOMElement& root);
    void appendNestedMap(xercesc::DOMElement& parent, const xercesc::DOMElement& node);
    bool isOpen(const xercesc::DOMDocument& map) const;

    const CompositeDocAssembler& assembler_;
    xercesc::DOMDocument& keyDoc_;
    CompositeDocRequest& request_;
    std::vector<Step> steps_;  ///< what is still to do, the next on top
    std::vector<const xercesc::DOMDocument*> openMaps_;
};

}  // namespace marrowpress
