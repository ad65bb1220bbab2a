#pragma once

#include <string_view>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

struct HrefParts;

/// The element that a content reference names in `document`, for a referring element of the given
/// tag name. `parts` may be null: then there is none, and nothing is reported.
///
/// The topic id "." stands for the first topic with an id; in a map any element of the id will do.
/// With an element id, the target is the first element of that id and tag name in there. Tag names
/// have to be equal; nothing else is compared.
///
/// Null after message 109 when the topic id leads nowhere or to an element of another name, after
/// message 108 when the topic has no such element.
xercesc::DOMElement* findConrefTarget(const xercesc::DOMDocument& document, const HrefParts* parts,
                                      std::u16string_view tagName);

/// Message 109: `file` has no element `tagName` of that id.
void reportElementNotFound(std::u16string_view tagName, std::u16string_view id,
                           const xercesc::DOMDocument& file);

}  // namespace marrowpress
