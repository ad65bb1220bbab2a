#pragma once

#include <vector>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

namespace marrowpress {

/// Walks the nodes below and including a root in document order, and gives
/// those that a filter accepts. A rejected node is passed over with all below
/// it; a skipped one is not given, but its children are visited.
///
/// `Node` is the kind of node that is seen: `DOMElement` for elements alone,
/// `DOMNode` for every kind.
///
/// The tree is read lazily. Between two calls, the attributes of the node
/// given last may be changed, its children replaced (the new ones are visited)
/// and siblings inserted behind it (they are visited). That node and those
/// above it must not be removed: to remove, collect first.
///
/// Owns neither the nodes nor the filter; both must outlive it.
template <class Node>
class TreeWalker {
public:
    /// A null `root` is a walk without nodes.
    TreeWalker(Node* root, const xercesc::DOMNodeFilter& filter);

    /// The next accepted node; null at the end, and from then on.
    Node* nextNode();

private:
    void step();
    void leaveFinishedLevels();

    // The path from the root to the position of the walk. A null entry on top stands for a level
    // that has no further nodes.
    std::vector<Node*> path_;
    const xercesc::DOMNodeFilter& filter_;
    Node* root_;
    Node* current_ = nullptr;
};

extern template class TreeWalker<xercesc::DOMElement>;
extern template class TreeWalker<xercesc::DOMNode>;

/// Sees elements only; text, comments and processing instructions are passed by.
using ElementWalker = TreeWalker<xercesc::DOMElement>;

/// Sees every kind of node.
using NodeWalker = TreeWalker<xercesc::DOMNode>;

/// All elements that a walk from `root`, which may be null, gives.
std::vector<xercesc::DOMElement*> collectElements(xercesc::DOMElement* root,
                                                  const xercesc::DOMNodeFilter& filter);

/// Takes each element out of its parent, where it has one. The nodes stay alive with their
/// document.
void removeElements(const std::vector<xercesc::DOMElement*>& elements);

}  // namespace marrowpress
