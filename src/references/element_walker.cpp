#include "references/element_walker.h"

namespace marrowpress {

ElementWalker::ElementWalker(xercesc::DOMElement* root, const xercesc::DOMNodeFilter& filter)
    : filter_(filter), root_(root) {
    if (root) {
        path_.push_back(root);
    }
}

xercesc::DOMElement* ElementWalker::nextNode() {
    if (current_) {
        // Read only now: what the caller did to the children counts.
        path_.push_back(current_->getFirstElementChild());
        current_ = nullptr;
    }
    while (!current_ && !path_.empty()) {
        step();
    }
    return current_;
}

void ElementWalker::step() {
    xercesc::DOMElement* const element = path_.back();
    if (!element) {
        leaveFinishedLevels();
        return;
    }
    switch (filter_.acceptNode(element)) {
        case xercesc::DOMNodeFilter::FILTER_ACCEPT:
            current_ = element;
            break;
        case xercesc::DOMNodeFilter::FILTER_REJECT:
            path_.push_back(nullptr);
            break;
        case xercesc::DOMNodeFilter::FILTER_SKIP:
            path_.push_back(element->getFirstElementChild());
            break;
    }
}

void ElementWalker::leaveFinishedLevels() {
    while (path_.size() > 1 && !path_.back()) {
        path_.pop_back();
        if (path_.size() > 1) {
            path_.back() = path_.back()->getNextElementSibling();
        }
    }
    if (path_.size() == 1 && path_.back() == root_) {
        path_.clear();
    }
}

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
