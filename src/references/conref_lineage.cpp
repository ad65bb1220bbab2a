#include "references/conref_lineage.h"

#include <utility>

namespace marrowpress {
namespace {

using xercesc::DOMElement;

bool isReference(const DOMElement& element) {
    return element.hasAttribute(u"conref") || element.hasAttribute(u"conkeyref");
}

/// The element behind `element` in a walk below `root`; null at the end.
DOMElement* nextInSubtree(DOMElement* element, const DOMElement& root) {
    if (DOMElement* const child = element->getFirstElementChild()) {
        return child;
    }
    while (element != &root) {
        if (DOMElement* const sibling = element->getNextElementSibling()) {
            return sibling;
        }
        element = static_cast<DOMElement*>(element->getParentNode());
    }
    return nullptr;
}

}  // namespace

bool ConrefLineage::isEndless(const Element& reference, const Element& start) const {
    const Origin own = originOf(reference);
    Origin origin = own;
    while (origin.followed != kNone) {
        if (origin.copiedFrom == &start) {
            return true;
        }
        origin = followed_[origin.followed];
        if (origin.source == own.source) {
            return true;
        }
    }
    return false;
}

void ConrefLineage::follow(const Element& reference) {
    followed_.push_back(originOf(reference));
}

void ConrefLineage::recordRangeMember(const Element& original, const Element& copy) {
    origins_[&copy] = {originOf(original).source, nullptr, followed_.size() - 1};
}

void ConrefLineage::recordContent(Element& original, Element& copy, const Element& owner) {
    DOMElement* from = &original;
    DOMElement* to = &copy;
    while (from && to) {
        if (isReference(*from)) {
            origins_[to] = {originOf(*from).source, &owner, followed_.size() - 1};
        }
        from = nextInSubtree(from, original);
        to = nextInSubtree(to, copy);
    }
}

ConrefLineage::Origin ConrefLineage::originOf(const Element& element) const {
    const auto known = origins_.find(&element);
    return known == origins_.end() ? Origin{&element, nullptr, kNone} : known->second;
}

}  // namespace marrowpress
