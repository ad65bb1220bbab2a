#pragma once

#include <cstddef>
#include <cstdint>

#include "results/run_result.h"

namespace marrowpress {

/// What has become of a job.
struct JobOutcome {
    enum class State : std::uint8_t {
        kWaiting,  ///< It has not happened, or came to nothing because the batch ended.
        kRunning,
        kUpToDate,  ///< It has a result of an earlier batch that still holds.
        kEnded,
    };

    State state = State::kWaiting;
    ResultState result = ResultState::kFailed;
    int exit = 0;
    unsigned tries = 1;
    std::size_t errors = 0;
    std::size_t warnings = 0;
    double seconds = 0;
    double cpuSeconds = 0;
    std::uint64_t memory = 0;  ///< Resident at most, in bytes.

    bool isDone() const noexcept { return state == State::kUpToDate || state == State::kEnded; }
    bool hasFailed() const noexcept { return isDone() && result == ResultState::kFailed; }
};

}  // namespace marrowpress
