#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <cstdint>
#include <string_view>
#include <vector>

#include "findings/finding.h"

/// What our JSON formats have in common. Texts from outside become valid UTF-8.
namespace marrowpress {

boost::json::value jsonText(std::string_view raw);

/// Null for the empty text.
boost::json::value jsonTextOrNull(std::string_view raw);

/// Null for 0.
boost::json::value jsonNumberOrNull(std::uint32_t number);

boost::json::object jsonPlace(const FindingPlace& place);
boost::json::object jsonStep(const FindingStep& step);

template <typename Item, typename Convert>
boost::json::array jsonArray(const std::vector<Item>& items, Convert convert) {
    boost::json::array array;
    array.reserve(items.size());
    for (const Item& item : items) {
        array.push_back(convert(item));
    }
    return array;
}

}  // namespace marrowpress
