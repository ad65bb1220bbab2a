#pragma once

#include <cstdint>

namespace marrowpress {

/// What the system could give to programs without swapping, in bytes; 0 when it does not say.
std::uint64_t availableMemory();

/// How many processes the kernel has killed for want of memory, in this control group and in the
/// machine. What counts is whether it grows.
std::uint64_t memoryKillCount();

}  // namespace marrowpress
