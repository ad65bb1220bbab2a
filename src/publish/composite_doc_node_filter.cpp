#include "publish/composite_doc_node_filter.h"

#include "references/exclusion_filter.h"

namespace marrowpress {

xercesc::DOMNodeFilter::FilterAction CompositeDocNodeFilter::acceptElement(
    const xercesc::DOMElement& element) const {
    const bool isLeftOut = selects(resourceOnly_, &element) ||
                           (usePrint_ && selects(notForPrint_, &element)) ||
                           selects(reltables_, &element) || isExcluded(element);
    return isLeftOut ? FILTER_REJECT : topicrefs_.acceptNode(&element);
}

}  // namespace marrowpress
