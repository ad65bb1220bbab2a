#pragma once

#include <sys/types.h>

#include <chrono>
#include <fstream>
#include <string>
#include <thread>

namespace marrowpress {

/// Whether `condition` comes true within a time that suffices for everything.
template <class Condition>
bool waitUntil(const Condition& condition) {
    constexpr std::chrono::seconds kLongest{30};
    constexpr std::chrono::milliseconds kStep{5};
    const auto end = std::chrono::steady_clock::now() + kLongest;
    while (std::chrono::steady_clock::now() < end) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(kStep);
    }
    return condition();
}

/// Whether the process has ended, and nobody has asked for its end yet.
inline bool isZombie(pid_t process) {
    std::ifstream in("/proc/" + std::to_string(process) + "/stat");
    std::string number;
    std::string name;
    std::string state;
    in >> number >> name >> state;
    return state == "Z";
}

}  // namespace marrowpress
