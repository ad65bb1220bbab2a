#pragma once

#include <xercesc/dom/DOMElement.hpp>

#include "dom/element_node_filter.h"
#include "references/node_filters.h"

namespace marrowpress {

/// Selects the references of a map that go into the output. Rejects, with all
/// below them: what is only a resource, relationship tables, what profiling
/// excludes, and, when the output is for print, what isn't.
class CompositeDocNodeFilter final : public ElementNodeFilter {
public:
    /// Whether the value "no" of "print" counts.
    void setUsePrint(bool usePrint) noexcept { usePrint_ = usePrint; }

protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;

private:
    AttrBasedElementNodeFilter resourceOnly_{u"processing-role", u"resource-only"};
    AttrBasedElementNodeFilter notForPrint_{u"print", u"no"};
    ReltableNodeFilter reltables_;
    TopicrefNodeFilter topicrefs_;
    bool usePrint_ = false;
};

}  // namespace marrowpress
