#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "references/element_ids.h"

namespace marrowpress {

struct HrefParts;

/// Finds what content references name, for one walk over them.
///
/// In a topic that is searched again, the ids are known by then, but those of elements that have
/// changed meanwhile: these are looked for each time.
class ConrefTargets {
public:
    /// The element that a content reference of `reference` names in `document`. `parts` may be
    /// null: then there is none, and nothing is reported.
    ///
    /// The topic id "." stands for the first topic with an id; in a map any element of the id will
    /// do. With an element id, the target is the first element of that id and tag name in there.
    /// Its tag name has to be that of `reference`; nothing else is compared.
    ///
    /// Null after message 109 when the topic id leads nowhere or to an element of another name,
    /// after message 108 when the topic has no such element.
    xercesc::DOMElement* find(const xercesc::DOMDocument& document, const HrefParts* parts,
                              const xercesc::DOMElement& reference);

    /// The subtree of `root` is about to go, or has come or got other ids.
    void noteChange(xercesc::DOMElement& root) { ids_.noteChange(root); }

    /// How many elements were looked at since this was asked last.
    std::size_t takeSearched() noexcept { return ids_.takeSearched(); }

private:
    ElementIds ids_;
};

/// The element that `parts` name in `document`, whatever its tag name; null when there is none.
/// Nothing is reported.
xercesc::DOMElement* elementOf(const xercesc::DOMDocument& document, const HrefParts& parts);

/// The id of the topic around the first element that is none itself and has the id `id`; empty
/// when there is no such element.
std::u16string topicIdAround(const xercesc::DOMDocument& document, std::u16string_view id);

}  // namespace marrowpress
