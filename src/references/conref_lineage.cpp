#include "references/conref_lineage.h"

#include "dom/copies.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

bool isReference(const DOMElement& element) {
    return element.hasAttribute(u"conref") || element.hasAttribute(u"conkeyref");
}

/// Whether `element` is a reference or may get some.
bool isWorthRecording(const DOMElement& element) {
    return isReference(element) || element.hasAttribute(u"keyref");
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

std::vector<const DOMElement*> ConrefLineage::ringOf(const Element& reference,
                                                     const Element& start) const {
    const Origin own = originOf(reference);
    std::vector<const Element*> ring{own.source};
    Origin origin = own;
    while (origin.followed != kNone && origin.copiedFrom != &start) {
        origin = followed_[origin.followed];
        if (origin.source == own.source) {
            break;
        }
        ring.push_back(origin.source);
    }
    return ring;
}

void ConrefLineage::follow(const Element& reference) {
    followed_.push_back(originOf(reference));
}

void ConrefLineage::recordRangeMember(const Element& original, const Element& copy) {
    origins_[&copy] = {originOf(original).source, nullptr, followed_.size() - 1};
}

void ConrefLineage::recordContent(Element& original, Element& copy, const Element& owner) {
    forEachCopiedElement(original, copy, [&](const Element& from, const Element& to) {
        if (isWorthRecording(from)) {
            origins_[&to] = {originOf(from).source, &owner, followed_.size() - 1};
        }
    });
}

void ConrefLineage::recordTakenReference(const Element& element, const Element& start) {
    if (isReference(element)) {
        Origin origin = originOf(element);
        origin.source = originOf(start).source;
        origins_[&element] = origin;
    }
}

void ConrefLineage::recordPulledContent(Element& copy) {
    std::map<const Element*, std::size_t> places;
    for (Element* element = &copy; element; element = nextInSubtree(element, copy)) {
        if (element == &copy || !isReference(*element) || origins_.contains(element)) {
            continue;
        }
        const Element* const host = originOf(recordedHost(*element, copy)).source;
        const auto first = pulled_.emplace(std::pair(host, places[host]++), element).first;
        origins_[element] = {first->second, nullptr, followed_.size() - 1};
    }
}

/// The innermost element around `element` that is recorded; `root` if there is none below it.
const DOMElement& ConrefLineage::recordedHost(const Element& element, const Element& root) const {
    const xercesc::DOMNode* host = element.getParentNode();
    while (host != &root && !origins_.contains(static_cast<const Element*>(host))) {
        host = host->getParentNode();
    }
    return *static_cast<const Element*>(host);
}

ConrefLineage::Origin ConrefLineage::originOf(const Element& element) const {
    const auto known = origins_.find(&element);
    return known == origins_.end() ? Origin{&element, nullptr, kNone} : known->second;
}

}  // namespace marrowpress
