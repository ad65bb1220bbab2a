#pragma once

#include "library/order.h"

namespace marrowpress {

/// The right to serve a request in this process, which one call has at a time: the engine's state
/// is the process's.
class RunTurn {
public:
    /// @throws LibraryFailure with MP_FORKED in a child that was forked since the library was
    ///         loaded, with MP_BUSY where another call has the turn, unless `order` waits for it on
    ///         another thread, or this thread is `Asking`, and with MP_CANCELLED when it is
    ///         cancelled meanwhile.
    explicit RunTurn(const Order& order);
    RunTurn(const RunTurn&) = delete;
    RunTurn& operator=(const RunTurn&) = delete;
    ~RunTurn();
};

}  // namespace marrowpress
