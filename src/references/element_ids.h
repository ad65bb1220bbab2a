#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

/// Finds elements by their "id" inside others, which must stay alive.
///
/// The first search inside an element is a walk, up to what is found; the second notes all ids in
/// there, and the others ask these notes. What has changed meanwhile is searched for each time.
class ElementIds {
public:
    /// The first element in document order, below and including `container`, with that id, which
    /// is not empty, and that tag name, or any where it is empty; null when there is none.
    xercesc::DOMElement* find(xercesc::DOMElement& container, std::u16string_view id,
                              std::u16string_view tagName = {});

    /// The subtree of `root` is about to go, or has come or got other ids.
    void noteChange(xercesc::DOMElement& root);

    /// How many elements were looked at since this was asked last.
    std::size_t takeSearched() noexcept;

private:
    using Ids = std::unordered_map<std::u16string, std::vector<xercesc::DOMElement*>>;

    xercesc::DOMElement* search(xercesc::DOMElement& container, std::u16string_view id,
                                std::u16string_view tagName);
    Ids idsIn(xercesc::DOMElement& container);
    void countStep() noexcept;

    /// In document order; none for an element that was searched once.
    std::unordered_map<const xercesc::DOMElement*, Ids> known_;
    std::unordered_set<std::u16string> changed_;
    std::size_t searched_ = 0;
};

}  // namespace marrowpress
