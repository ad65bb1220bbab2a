#pragma once

#include <chrono>

#include "runs/run_clock.h"

namespace marrowpress {

/// A clock that tests set. One at a time.
class SetClock {
public:
    SetClock() { time() = {}; }

    static RunClock::Clock::time_point now() { return time(); }

    void pass(int microseconds) { time() += std::chrono::microseconds(microseconds); }

private:
    static RunClock::Clock::time_point& time() {
        static RunClock::Clock::time_point current;
        return current;
    }
};

}  // namespace marrowpress
