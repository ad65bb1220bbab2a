#pragma once

#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

/// Whether `element`, of a map, of the key space or of a finished document, is part of what is
/// published: it is still in its document, the profile keeps it, and it stands in no relationship
/// table and in no topic that a map's reference has pulled into the map.
bool isPublished(const xercesc::DOMElement& element);

/// Whether a run for print leaves out `element` of a map. Definitions of keys count in it, too.
bool isLeftOutOfPrint(const xercesc::DOMElement& element);

}  // namespace marrowpress
