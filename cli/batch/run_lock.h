#pragma once

#include <filesystem>

namespace marrowpress {

/// Keeps the jobs of several batches with one folder of results, as an engine starts them, out of
/// each other's way: those that run alone wait for all others, and the others for them. The lock is
/// one of the folder, and goes with the process. Where the file system has no locks, nothing is
/// held.
class RunLock {
public:
    enum class Kind { kShared, kAlone };

    /// @param folder  Is there.
    explicit RunLock(const std::filesystem::path& folder);
    RunLock(const RunLock&) = delete;
    RunLock& operator=(const RunLock&) = delete;
    ~RunLock();

    /// Holds the lock in that way from now on; false when another process keeps it from that, and
    /// this one may hold nothing then.
    [[nodiscard]] bool tryToHold(Kind kind) const;

private:
    int descriptor_;
};

}  // namespace marrowpress
