#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "runs/run_clock.h"

namespace marrowpress {

/// What the process has used so far.
struct UsedResources {
    std::chrono::microseconds cpu{};  ///< In user and system mode.
    std::uintmax_t peakMemory = 0;    ///< Bytes that were resident at most.
};

UsedResources usedResources();

/// What the clock has counted and measured, as lines for people in the language of the run.
std::string statisticsText(const RunClock& clock, const UsedResources& used);

}  // namespace marrowpress
