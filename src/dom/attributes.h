#pragma once

#include <string>
#include <string_view>
#include <xercesc/dom/DOMElement.hpp>

#include "support/xerces_ptr.h"

namespace marrowpress {

/// The value of an attribute; a missing one reads as empty. The view ends when the attribute
/// changes.
inline std::u16string_view attributeView(const xercesc::DOMElement& element, const XMLCh* name) {
    return domText(element.getAttribute(name));
}

/// A copy of the value of an attribute; a missing one reads as empty.
inline std::u16string attributeOf(const xercesc::DOMElement& element, const XMLCh* name) {
    return std::u16string(attributeView(element, name));
}

}  // namespace marrowpress
