#include "library/run_turn.h"

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "library/calling_back.h"
#include "library/failure.h"

namespace marrowpress {
namespace {

using namespace std::chrono_literals;

/// How often a call that waits looks whether it is cancelled.
constexpr auto kPause = 50ms;

struct TurnState {
    std::mutex mutex;
    std::condition_variable end;
    bool isTaken = false;
    std::thread::id owner;
};

/// Stays as it is when the process ends: to destroy the condition would wait for whoever waits for
/// it, who is no more in a child of fork(2).
union LastingState {
    LastingState() : state() {}
    LastingState(const LastingState&) = delete;
    LastingState& operator=(const LastingState&) = delete;
    ~LastingState() {}

    TurnState state;
};

TurnState& turnState() {
    static LastingState lasting;
    return lasting.state;
}

std::atomic<bool> isForked = false;

/// Called when the library is loaded. In a child the engine is as the fork has found it, and locks
/// are held by threads that are not there.
[[maybe_unused]] const int kWatchesForks =
    pthread_atfork(nullptr, nullptr, [] { isForked = true; });

}  // namespace

RunTurn::RunTurn(const Order& order) {
    if (isForked) {
        throw LibraryFailure(MP_FORKED, mp_code_text(MP_FORKED));
    }
    if (Asking::isGoingOn()) {
        throw LibraryFailure(MP_BUSY, mp_code_text(MP_BUSY));
    }
    TurnState& state = turnState();
    std::unique_lock lock(state.mutex);
    const bool waits = order.has(MP_WAIT) && state.owner != std::this_thread::get_id();
    while (state.isTaken) {
        if (!waits) {
            throw LibraryFailure(MP_BUSY, mp_code_text(MP_BUSY));
        }
        if (order.isCancelled()) {
            throw LibraryFailure(MP_CANCELLED, mp_code_text(MP_CANCELLED));
        }
        state.end.wait_for(lock, kPause);
    }
    state.isTaken = true;
    state.owner = std::this_thread::get_id();
}

RunTurn::~RunTurn() {
    TurnState& state = turnState();
    const std::lock_guard lock(state.mutex);
    state.isTaken = false;
    state.owner = {};
    state.end.notify_one();
}

}  // namespace marrowpress
