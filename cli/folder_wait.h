#pragma once

#include <chrono>
#include <string>

namespace marrowpress {

/// How long a run waits for another one that writes into the same folder.
inline constexpr std::chrono::seconds kLongestFolderWait{10};

/// Waits until no other run holds `folder`, at most until `end`. The client locks the folder that
/// it writes into with `flock`, and fails at once where another one has.
///
/// False when the other one still holds it. A folder that can't be opened or locked is free.
bool waitForFolder(const std::string& folder, std::chrono::steady_clock::time_point end);

}  // namespace marrowpress
