#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <xercesc/dom/DOMNodeFilter.hpp>

#include "references/exclusion_filter.h"
#include "references/node_filters.h"
#include "tests/support/xml_text.h"

/// What filters answer, in words that a failing test can show.
namespace marrowpress {

inline constexpr auto kAccept = xercesc::DOMNodeFilter::FILTER_ACCEPT;
inline constexpr auto kReject = xercesc::DOMNodeFilter::FILTER_REJECT;
inline constexpr auto kSkip = xercesc::DOMNodeFilter::FILTER_SKIP;

using FilterMaker = std::unique_ptr<xercesc::DOMNodeFilter> (*)();

template <class Filter>
std::unique_ptr<xercesc::DOMNodeFilter> makeFilter() {
    return std::make_unique<Filter>();
}

inline std::string answerAbout(const xercesc::DOMNodeFilter& filter, const xercesc::DOMNode* node) {
    switch (filter.acceptNode(node)) {
        case xercesc::DOMNodeFilter::FILTER_ACCEPT:
            return "accept";
        case xercesc::DOMNodeFilter::FILTER_REJECT:
            return "reject";
        case xercesc::DOMNodeFilter::FILTER_SKIP:
            return "skip";
    }
    return "none of the three";
}

/// The answer about the root of `xml`.
inline std::string answerAbout(const xercesc::DOMNodeFilter& filter, std::string_view xml) {
    const ParsedXml parsed(xml);
    return answerAbout(filter, parsed.root());
}

/// From now on the run excludes each element with excluded="yes".
inline void excludeMarkedElements() {
    ExclusionFilterHolder::instance().reset(
        std::make_unique<AttrBasedElementNodeFilter>(u"excluded", u"yes"));
}

}  // namespace marrowpress
