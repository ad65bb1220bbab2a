#pragma once

#include <csignal>

namespace marrowpress {

/// The signals for which a process waits that has children at work: that of a child that has ended,
/// and those that end the process. Interruption does so also where a shell ignores it for what it
/// starts in the background; hanging up does not where the caller ignores it, as nohup(1).
sigset_t waitedSignals();

/// Holds them back while it lives, so that one can be waited for after the other. Whoever has
/// started this process may ignore that children end: nobody would hear how, so that goes for good.
class BlockedSignals {
public:
    BlockedSignals();
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals();

private:
    sigset_t earlier_{};
};

}  // namespace marrowpress
