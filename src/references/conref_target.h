#pragma once

#include <string>
#include <string_view>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

struct HrefParts;

/// The element that a content reference of `reference` names in `document`. `parts` may be null:
/// then there is none, and nothing is reported.
///
/// The topic id "." stands for the first topic with an id; in a map any element of the id will do.
/// With an element id, the target is the first element of that id and tag name in there. Its tag
/// name has to be that of `reference`; nothing else is compared.
///
/// Null after message 109 when the topic id leads nowhere or to an element of another name, after
/// message 108 when the topic has no such element.
xercesc::DOMElement* findConrefTarget(const xercesc::DOMDocument& document, const HrefParts* parts,
                                      const xercesc::DOMElement& reference);

/// The element that `parts` name in `document`, whatever its tag name; null when there is none.
/// Nothing is reported.
xercesc::DOMElement* elementOf(const xercesc::DOMDocument& document, const HrefParts& parts);

/// The id of the topic around the first element that is none itself and has the id `id`; empty
/// when there is no such element.
std::u16string topicIdAround(const xercesc::DOMDocument& document, std::u16string_view id);

}  // namespace marrowpress
