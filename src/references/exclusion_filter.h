#pragma once

#include <memory>
#include <utility>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

namespace marrowpress {

/// Holder of the filter that says what profiling excludes from the run.
///
/// The filter accepts an element that is excluded. An empty holder excludes
/// nothing.
class ExclusionFilterHolder {
public:
    static ExclusionFilterHolder& instance();

    /// Puts `filter`, which may be null, in the place of the one that is held.
    void reset(std::unique_ptr<xercesc::DOMNodeFilter> filter) { filter_ = std::move(filter); }

    /// The filter, or null.
    const xercesc::DOMNodeFilter* filter() const noexcept { return filter_.get(); }

private:
    std::unique_ptr<xercesc::DOMNodeFilter> filter_;
};

/// Whether profiling excludes `element` from the run.
bool isExcluded(const xercesc::DOMElement& element);

/// Whether profiling excludes `element`, or one around it.
bool isInExcluded(const xercesc::DOMElement& element);

}  // namespace marrowpress
