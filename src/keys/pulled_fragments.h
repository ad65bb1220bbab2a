#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "references/element_ids.h"

namespace marrowpress {

/// Pulls parts of maps into one map, in place of the references to them, and
/// remembers what it has pulled, so that a part that refers to itself, directly
/// or by way of others, is pulled once and not without end.
class PulledFragments {
public:
    /// Puts a copy of the element of `target` whose "id" is `id` right behind `reference`. Does
    /// nothing when there is no such element, when the reference stands inside it, or when a copy
    /// of it has led to the reference. `reference` itself stays.
    ///
    /// @throws xercesc::DOMException for a reference that is the root: a document has room for one
    ///         element only. PublishException where the map would nest too deeply with the copy.
    void pull(xercesc::DOMElement& reference, const xercesc::DOMDocument& target,
              std::u16string_view id);

private:
    /// A part by its map and id: copies keep their ids.
    struct Fragment {
        const xercesc::DOMDocument* map;
        std::u16string id;

        friend bool operator==(const Fragment&, const Fragment&) = default;
    };

    struct Copy {
        Fragment fragment;
        const Copy* cause;  ///< what the reference was a part of; null for nothing pulled
    };

    static bool hasLedTo(const Copy* cause, const Fragment& fragment);
    const Copy* innermostCopy(const xercesc::DOMElement& reference) const;

    std::unordered_map<const xercesc::DOMNode*, Copy> copies_;
    ElementIds ids_;
};

}  // namespace marrowpress
