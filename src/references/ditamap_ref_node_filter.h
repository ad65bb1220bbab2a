#pragma once

#include <xercesc/dom/DOMElement.hpp>

#include "dom/element_node_filter.h"

namespace marrowpress {

class KeySpace;

/// Selects references to maps, and to XML files that only a look into them can tell. What
/// profiling excludes is rejected.
class DitamapRefNodeFilter final : public ElementNodeFilter {
public:
    /// The keys in whose context references are resolved; may be null, must outlive the filter.
    void setContext(const KeySpace* keySpace) noexcept { context_ = keySpace; }

protected:
    FilterAction acceptElement(const xercesc::DOMElement& element) const override;

private:
    const KeySpace* context_ = nullptr;
};

}  // namespace marrowpress
