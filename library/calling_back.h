#pragma once

#include <filesystem>

// What a thread is doing when one of the caller's callbacks may be called on it.

namespace marrowpress {

/// While it lives, callbacks of a call that has not begun yet may be called on this thread.
class Asking {
public:
    Asking() noexcept;
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;
    ~Asking();

    /// Whether there is one on this thread.
    static bool isGoingOn() noexcept;
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

}  // namespace marrowpress
