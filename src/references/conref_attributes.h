#pragma once

#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

/// Gives `destination` what it lacks of the attributes of `source`: those that are empty or
/// "-dita-use-conref-target", and in any case the "href" of an image, a link or a cross reference.
/// "id" and "class" are never taken, and no empty value is.
void mergeAttributes(xercesc::DOMElement& destination, const xercesc::DOMElement& source);

}  // namespace marrowpress
