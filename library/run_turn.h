#pragma once

#include <filesystem>

#include "library/order.h"

namespace marrowpress {

/// While it lives, callbacks of a call that has not begun yet may be called on this thread.
class Asking {
public:
    Asking() noexcept;
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;
    ~Asking();
};

/// The folder into which a request of this thread writes. It waits for other runs there, and so
/// must not be called from a callback of one of them.
class FolderTurn {
public:
    /// @param folder  Empty for a request that writes into none.
    /// @throws LibraryFailure with MP_BUSY for that of a run that is calling back.
    explicit FolderTurn(std::filesystem::path folder);
    FolderTurn(const FolderTurn&) = delete;
    FolderTurn& operator=(const FolderTurn&) = delete;
    ~FolderTurn();
};

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
