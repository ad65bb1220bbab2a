#pragma once

#include "library/order.h"
#include "library/result.h"

namespace marrowpress {

/// Serves the request in this process, on the road that the command takes, and gathers what it
/// tells. Nothing else may be served meanwhile.
///
/// @throws LibraryFailure where there is no answer, std::bad_alloc, and what else goes wrong.
ResultData serve(const Order& order);

}  // namespace marrowpress
