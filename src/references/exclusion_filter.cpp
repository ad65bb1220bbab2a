#include "references/exclusion_filter.h"

#include "dom/element_node_filter.h"
#include "dom/nodes.h"
#include "support/request_singleton.h"

namespace marrowpress {

ExclusionFilterHolder& ExclusionFilterHolder::instance() {
    return RequestSingleton<ExclusionFilterHolder>::instance();
}

bool isExcluded(const xercesc::DOMElement& element) {
    // Asked for each element of a walk: no holder is made for the answer.
    const ExclusionFilterHolder* const holder = RequestSingleton<ExclusionFilterHolder>::existing();
    return holder && holder->filter() && selects(*holder->filter(), &element);
}

bool isInExcluded(const xercesc::DOMElement& element) {
    const ExclusionFilterHolder* const holder = RequestSingleton<ExclusionFilterHolder>::existing();
    const bool hasFilter = holder && holder->filter();
    for (const xercesc::DOMElement* around = hasFilter ? &element : nullptr; around;
         around = asElement(around->getParentNode())) {
        if (isExcluded(*around)) {
            return true;
        }
    }
    return false;
}

}  // namespace marrowpress
