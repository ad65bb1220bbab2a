#pragma once

#include <string>
#include <xercesc/dom/DOMElement.hpp>

#include "references/reference_resolution.h"

namespace marrowpress {

/// The path of a reference that stands on `node`, made absolute against the node's document.
std::u16string absoluteReferencePath(const DitaReference& reference,
                                     const xercesc::DOMElement& node);

/// What a reference that stands on `node` names; where its name doesn't tell, the document is
/// loaded to look.
DitaDocKind kindOfReference(const DitaReference& reference, const xercesc::DOMElement& node);

}  // namespace marrowpress
