#include "references/element_ids.h"

#include <algorithm>
#include <utility>

#include "dom/attributes.h"
#include "dom/copies.h"
#include "support/short_cuts.h"
#include "support/work_counts.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;

bool isCalled(const DOMElement& element, std::u16string_view tagName) {
    return tagName.empty() || domText(element.getTagName()) == tagName;
}

}  // namespace

DOMElement* ElementIds::find(DOMElement& container, std::u16string_view id,
                             std::u16string_view tagName) {
    const auto [known, isFirstSearch] = known_.try_emplace(&container);
    const std::u16string key(id);
    if (isFirstSearch || changed_.contains(key) || !ShortCuts::taken().noteIds) {
        return search(container, id, tagName);
    }
    if (known->second.empty()) {
        known->second = idsIn(container);
    }
    const auto elements = known->second.find(key);
    if (elements == known->second.end()) {
        return nullptr;
    }
    const auto found =
        std::find_if(elements->second.begin(), elements->second.end(),
                     [&](const DOMElement* element) { return isCalled(*element, tagName); });
    return found == elements->second.end() ? nullptr : *found;
}

DOMElement* ElementIds::search(DOMElement& container, std::u16string_view id,
                               std::u16string_view tagName) {
    DOMElement* element = &container;
    for (; element; element = nextInSubtree(element, container)) {
        countStep();
        if (attributeView(*element, u"id") == id && isCalled(*element, tagName)) {
            break;
        }
    }
    return element;
}

ElementIds::Ids ElementIds::idsIn(DOMElement& container) {
    Ids ids;
    for (DOMElement* element = &container; element; element = nextInSubtree(element, container)) {
        countStep();
        if (std::u16string id = attributeOf(*element, u"id"); !id.empty()) {
            ids[std::move(id)].push_back(element);
        }
    }
    return ids;
}

void ElementIds::noteChange(DOMElement& root) {
    for (DOMElement* element = &root; element; element = nextInSubtree(element, root)) {
        if (std::u16string id = attributeOf(*element, u"id"); !id.empty()) {
            changed_.insert(std::move(id));
        }
    }
}

void ElementIds::countStep() noexcept {
    ++searched_;
    ++WorkCounts::total().searchSteps;
}

std::size_t ElementIds::takeSearched() noexcept {
    return std::exchange(searched_, 0);
}

}  // namespace marrowpress
