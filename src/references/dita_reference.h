#pragma once

#include <string>
#include <vector>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

class KeySpace;

/// What an element refers to.
struct DitaReference {
    std::u16string type;      ///< the attribute "type" as written
    std::u16string format;    ///< the attribute "format" as written
    std::u16string path;      ///< the file, absolute, or an external URI; empty if there is none
    std::u16string fragment;  ///< the topic id of the href
    /// The files that were looked for in vain, each of them message 111, in this order.
    std::vector<std::u16string> missingFiles;
};

/// Reads what `element` refers to. `keySpace` may be null.
///
/// The href of an element whose "keyref" names a defined key is relative to the key space
/// document, if the file exists there; all others, and the rest, to the element's own document.
DitaReference readDitaReference(const xercesc::DOMElement& element, const KeySpace* keySpace);

/// Message 111 once more for each missing file of `reference`, which was read from `element`: every
/// step that follows a reference tells what it misses.
void reportMissingFiles(const DitaReference& reference, const xercesc::DOMElement& element);

}  // namespace marrowpress
