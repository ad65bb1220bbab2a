#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "runs/map_run.h"

namespace marrowpress {

/// How long a run waits for another one that writes into the same folder.
inline constexpr std::chrono::seconds kLongestFolderWait{10};

/// Waits until no other run holds `folder`, at most until `end`. The client locks the folder that
/// it writes into with `flock`, and fails at once where another one has.
///
/// False when the other one still holds it. A folder that can't be opened or locked is free.
bool waitForFolder(const std::string& folder, std::chrono::steady_clock::time_point end);

/// Makes a run when no other one writes into `folder`, and again when a third one was faster.
///
/// @param wait  Waits for the folder, as `waitForFolder` does; false ends it all with an outcome
/// that
///              says so.
RunOutcome runInTurn(const std::string& folder, const std::function<bool()>& wait,
                     const std::function<RunOutcome()>& run);

/// Holds a folder as a run does that writes into it, while it lives. Where the file system has no
/// locks, or the folder is not there, nothing is held.
class FolderHold {
public:
    /// Waits until no run holds the folder, at most to `end`.
    FolderHold(const std::string& folder, std::chrono::steady_clock::time_point end);
    FolderHold(const FolderHold&) = delete;
    FolderHold& operator=(const FolderHold&) = delete;
    ~FolderHold();

    /// Whether a run held it to the end.
    bool isTaken() const noexcept { return isTaken_; }

private:
    int descriptor_;
    bool isTaken_ = false;
};

}  // namespace marrowpress
