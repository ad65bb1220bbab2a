#pragma once

#include <string>

#include "library/order.h"

namespace marrowpress {

/// What a child is told of an order.
struct SentOrder {
    Order order;                 ///< Without callbacks and cancel flag.
    bool wantsProgress = false;  ///< The parent has the callback.
    bool canResolve = false;     ///< The parent has the callback.
};

/// A line of JSON, and back.
///
/// @throws std::exception for a text that `toJsonLine` has not made.
std::string toJsonLine(const Order& order);
SentOrder orderFromJson(const std::string& line);

}  // namespace marrowpress
