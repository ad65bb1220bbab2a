#include "dom/element_walker.h"

#include "dom/nodes.h"
#include "support/work_counts.h"

namespace marrowpress {

namespace {

xercesc::DOMElement* firstChild(const xercesc::DOMElement& element) {
    return firstElementChild(element);
}

xercesc::DOMNode* firstChild(const xercesc::DOMNode& node) {
    return node.getFirstChild();
}

xercesc::DOMElement* nextSibling(const xercesc::DOMElement& element) {
    return nextElementSibling(element);
}

xercesc::DOMNode* nextSibling(const xercesc::DOMNode& node) {
    return node.getNextSibling();
}

}  // namespace

template <class Node>
TreeWalker<Node>::TreeWalker(Node* root, const xercesc::DOMNodeFilter& filter)
    : filter_(filter), root_(root) {
    if (root) {
        path_.push_back(root);
    }
}

template <class Node>
Node* TreeWalker<Node>::nextNode() {
    if (current_) {
        // Read only now: what the caller did to the children counts.
        path_.push_back(firstChild(*current_));
        current_ = nullptr;
    }
    while (!current_ && !path_.empty()) {
        step();
    }
    return current_;
}

template <class Node>
void TreeWalker<Node>::step() {
    Node* const node = path_.back();
    if (!node) {
        leaveFinishedLevels();
        return;
    }
    ++WorkCounts::total().walkSteps;
    switch (filter_.acceptNode(node)) {
        case xercesc::DOMNodeFilter::FILTER_ACCEPT:
            current_ = node;
            break;
        case xercesc::DOMNodeFilter::FILTER_REJECT:
            path_.push_back(nullptr);
            break;
        case xercesc::DOMNodeFilter::FILTER_SKIP:
            path_.push_back(firstChild(*node));
            break;
    }
}

template <class Node>
void TreeWalker<Node>::leaveFinishedLevels() {
    while (path_.size() > 1 && !path_.back()) {
        path_.pop_back();
        if (path_.size() > 1) {
            path_.back() = nextSibling(*path_.back());
        }
    }
    if (path_.size() == 1 && path_.back() == root_) {
        path_.clear();
    }
}

template class TreeWalker<xercesc::DOMElement>;
template class TreeWalker<xercesc::DOMNode>;

std::vector<xercesc::DOMElement*> collectElements(xercesc::DOMElement* root,
                                                  const xercesc::DOMNodeFilter& filter) {
    std::vector<xercesc::DOMElement*> elements;
    ElementWalker walker(root, filter);
    while (xercesc::DOMElement* const element = walker.nextNode()) {
        elements.push_back(element);
    }
    return elements;
}

void removeElements(const std::vector<xercesc::DOMElement*>& elements) {
    for (xercesc::DOMElement* const element : elements) {
        if (xercesc::DOMNode* const parent = element->getParentNode()) {
            parent->removeChild(element);
        }
    }
}

}  // namespace marrowpress
