#pragma once

#include <initializer_list>
#include <memory>

#include "profiling/ditaval_filters.h"

/// Filters of profiles, made without a DITAVAL file.
namespace marrowpress {

using AttributeFilters = DitaValExcludeFilter::AttributeFilters;

template <class Filter>
std::unique_ptr<Filter> withValues(const char16_t* attributeName,
                                   std::initializer_list<const char16_t*> values) {
    auto filter = std::make_unique<Filter>(attributeName);
    for (const char16_t* const value : values) {
        filter->addValue(value);
    }
    return filter;
}

/// The filter of a profile that excludes audience "x" and platform "x".
inline std::unique_ptr<DitaValExcludeFilter> excludingX() {
    AttributeFilters filters;
    filters.push_back(withValues<DitaValAttrValRejectFilter>(u"audience", {u"x"}));
    filters.push_back(withValues<DitaValAttrValRejectFilter>(u"platform", {u"x"}));
    return std::make_unique<DitaValExcludeFilter>(std::move(filters));
}

inline std::unique_ptr<DitaValExcludeFilter> excludingNothing() {
    return std::make_unique<DitaValExcludeFilter>(AttributeFilters());
}

}  // namespace marrowpress
