#pragma once

#include <tuple>

#include "findings/finding.h"

namespace marrowpress {

/// Places by file, line and column.
struct PlaceOrder {
    bool operator()(const FindingPlace& left, const FindingPlace& right) const {
        return std::tie(left.file, left.line, left.column) <
               std::tie(right.file, right.line, right.column);
    }
};

}  // namespace marrowpress
