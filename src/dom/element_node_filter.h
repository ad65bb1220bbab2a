#pragma once

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

#include "dom/nodes.h"

namespace marrowpress {

/// Whether `filter` accepts `node`, which may be null.
inline bool selects(const xercesc::DOMNodeFilter& filter, const xercesc::DOMNode* node) {
    return filter.acceptNode(node) == xercesc::DOMNodeFilter::FILTER_ACCEPT;
}

/// A filter of elements: rejects what is none, a null pointer included, which so never gets to
/// `acceptElement`.
class ElementNodeFilter : public xercesc::DOMNodeFilter {
public:
    FilterAction acceptNode(const xercesc::DOMNode* node) const final {
        const xercesc::DOMElement* const element = asElement(node);
        return element ? acceptElement(*element) : FILTER_REJECT;
    }

protected:
    virtual FilterAction acceptElement(const xercesc::DOMElement& element) const = 0;

    /// Accepts what is selected, and else goes on with the children.
    static FilterAction acceptIf(bool isSelected) {
        return isSelected ? FILTER_ACCEPT : FILTER_SKIP;
    }
};

}  // namespace marrowpress
