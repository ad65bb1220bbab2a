#pragma once

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

/// Turns references through keys into direct ones. No key is resolved yet.
class KeyrefProcessor {
public:
    /// `root` may be null.
    void resolveAllKeyrefs(xercesc::DOMElement* root, xercesc::DOMDocument& keyDoc) const;
};

}  // namespace marrowpress
