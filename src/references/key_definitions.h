#pragma once

#include <string>
#include <string_view>
#include <xercesc/dom/DOMElement.hpp>

/// What a key definition gives to an element that refers to it: an href, and
/// content where the element has none of its own.
///
/// A key reference is a key name, and behind its first "/", if there is one,
/// the id of an element in what the key stands for.
namespace marrowpress {

class KeySpace;
class ParserBundle;

/// The key name in a key reference.
std::u16string_view keyNameOf(std::u16string_view keyReference);

/// The href that a key reference stands for, given the "href" of the definition.
///
/// An element id goes behind the topic id of the href. Where the href names no topic, it becomes
/// the id itself in a map, and otherwise belongs to the first topic of the file ("#./id"). To know
/// which, the document is loaded, which may report message 106. `reference` is the element that
/// refers through the key.
std::u16string effectiveKeyHref(std::u16string_view keyReference,
                                std::u16string_view definitionHref,
                                const xercesc::DOMElement& reference);

/// The effective href of a key reference of the element `reference`. Empty without a key name;
/// empty, after message 105, when the key isn't defined.
std::u16string resolveKeyHref(const KeySpace& keySpace, std::u16string_view keyReference,
                              const xercesc::DOMElement& reference);

/// Whether an element may take content from its key definition.
enum class KeyContent { kPull, kLeave };

/// Makes the key reference of `element` direct and removes its "keyref". An element without any
/// child takes content from the definition, and where its type declares "href", it gets the
/// effective href in place of its own. No other attribute comes from the definition.
///
/// `definition` may be null: then message 105 names the key, and the element stays as it is but
/// for the "keyref". `dtd` tells what the element's type declares. Gives the element whose children
/// were copied; null when none were.
const xercesc::DOMElement* applyKeyDefinition(xercesc::DOMElement& element,
                                              const xercesc::DOMElement* definition,
                                              const ParserBundle& dtd,
                                              KeyContent content = KeyContent::kPull);

/// Appends to `element` copies of what the definition has for it, in its topicmeta or, for a
/// topic reference, as a whole. `declaresHref` says whether the type of `element` has an "href".
/// Gives the element whose children were copied; null when there is none.
const xercesc::DOMElement* pullKeyContent(xercesc::DOMElement& element,
                                          const xercesc::DOMElement& definition, bool declaresHref);

/// The text that a definition has for elements without an "href", without the tags in it; empty
/// when it has none.
std::u16string keyTextOf(const xercesc::DOMElement& definition);

/// The first child element with exactly that tag name; null if there is none.
xercesc::DOMElement* findChildByTag(std::u16string_view tagName, const xercesc::DOMElement& parent);

}  // namespace marrowpress
