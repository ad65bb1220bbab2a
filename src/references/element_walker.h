#pragma once

#include <deque>
#include <vector>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

namespace marrowpress {

/// Walks the elements below and including a root in document order, and gives
/// those that a filter accepts. A rejected element is passed over with all
/// below it; a skipped one is not given, but its children are visited.
///
/// The tree is read lazily. Between two calls, the attributes of the element
/// given last may be changed, its children replaced (the new ones are visited)
/// and siblings inserted behind it (they are visited). That element and those
/// above it must not be removed: to remove, collect first.
///
/// Owns neither the nodes nor the filter; both must outlive it.
class ElementWalker {
public:
    /// A null `root` is a walk without elements.
    ElementWalker(xercesc::DOMElement* root, const xercesc::DOMNodeFilter& filter);

    /// The next accepted element; null at the end, and from then on.
    xercesc::DOMElement* nextNode();

private:
    void step();
    void leaveFinishedLevels();

    // The path from the root to the position of the walk. A null entry on top stands for a level
    // that has no further elements.
    std::deque<xercesc::DOMElement*> path_;
    const xercesc::DOMNodeFilter& filter_;
    xercesc::DOMElement* root_;
    xercesc::DOMElement* current_ = nullptr;
};

/// All elements that a walk from `root`, which may be null, gives.
std::vector<xercesc::DOMElement*> collectElements(xercesc::DOMElement* root,
                                                  const xercesc::DOMNodeFilter& filter);

/// Takes each element out of its parent, where it has one. The nodes stay alive with their
/// document.
void removeElements(const std::vector<xercesc::DOMElement*>& elements);

}  // namespace marrowpress
