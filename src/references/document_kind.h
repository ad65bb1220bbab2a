#pragma once

#include <cstdint>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

/// What kind of document a reference leads to, or a document is.
namespace marrowpress {

struct DitaReference;

enum class DitaDocKind : std::uint32_t {
    DitaDocNone = 0,
    DitaDocTopic = 1,
    DitaDocMap = 2,
    DitaDocUnknownXml = 3,
};

/// Tells by the end of the path, and for an ".xml" file (or a path of less than five characters)
/// by "type" and "format".
DitaDocKind classifyReference(const DitaReference& reference);

/// Tells by the document element; a null document, or one without an element, is none.
DitaDocKind classifyDocument(const xercesc::DOMDocument* document);

/// What a reference that stands on `node` names; where its name doesn't tell, the document is
/// loaded to look.
DitaDocKind kindOfReference(const DitaReference& reference, const xercesc::DOMElement& node);

}  // namespace marrowpress
