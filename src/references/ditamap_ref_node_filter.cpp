#include "references/ditamap_ref_node_filter.h"

#include "references/dita_reference.h"
#include "references/document_kind.h"
#include "references/exclusion_filter.h"

namespace marrowpress {

xercesc::DOMNodeFilter::FilterAction DitamapRefNodeFilter::acceptElement(
    const xercesc::DOMElement& element) const {
    if (isExcluded(element)) {
        return FILTER_REJECT;
    }
    const DitaDocKind kind = classifyReference(readDitaReference(element, context_));
    return acceptIf(kind == DitaDocKind::DitaDocMap || kind == DitaDocKind::DitaDocUnknownXml);
}

}  // namespace marrowpress
