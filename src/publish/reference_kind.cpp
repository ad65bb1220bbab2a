#include "publish/reference_kind.h"

#include "xml/document_store.h"

namespace marrowpress {

std::u16string absoluteReferencePath(const DitaReference& reference,
                                     const xercesc::DOMElement& node) {
    return toAbsolutePath(reference.path, *node.getOwnerDocument());
}

DitaDocKind kindOfReference(const DitaReference& reference, const xercesc::DOMElement& node) {
    const DitaDocKind kind = classifyReference(reference);
    if (kind != DitaDocKind::DitaDocUnknownXml) {
        return kind;
    }
    return classifyDocument(
        DocumentStore::instance().getOrLoad(absoluteReferencePath(reference, node)));
}

}  // namespace marrowpress
