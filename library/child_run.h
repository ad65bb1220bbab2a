#pragma once

#include "library/order.h"
#include "library/result.h"

extern "C" {
/// What the helper program calls: `serveParent`. Not for others.
int mp_serve(int socket);
}

namespace marrowpress {

/// Serves the request in a child, the helper program that loads this very library, and answers
/// what the child asks meanwhile.
///
/// @throws LibraryFailure with MP_UNAVAILABLE, MP_SYSTEM, MP_CANCELLED or MP_TIMED_OUT.
ResultData serveInChild(const Order& order);

/// The other end: takes an order from the socket, serves it, and writes the result there. Sets the
/// limits of the process, which ends early by SIGTERM, or with its parent.
///
/// @return  What the process is to end with.
int serveParent(int socket) noexcept;

}  // namespace marrowpress
