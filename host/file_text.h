#pragma once

#include <cstddef>
#include <limits>
#include <string>

namespace marrowpress {

/// The most bytes that are read of what somebody hands over and that may have no end, as a pipe or
/// a device: more than any such text needs, and less than would exhaust a machine.
inline constexpr std::size_t kMostInputBytes = 256UL * 1024 * 1024;

inline constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

/// The bytes of the file at `path`.
///
/// @throws std::system_error that names the path and says why it cannot be read; that it is too
///         large when it has more than `mostBytes`.
std::string readFile(const std::string& path, std::size_t mostBytes = kNoLimit);

/// The bytes of standard input, to its end.
///
/// @throws std::system_error that says "cannot read standard input", and why; that it is too large
///         when it has more than `mostBytes`.
std::string readStandardInput(std::size_t mostBytes = kNoLimit);

}  // namespace marrowpress
