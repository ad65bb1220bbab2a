#pragma once

#include <csignal>
#include <string>

namespace marrowpress {

/// Holds back the signals that a `RemovalOnSignal` is for while it lives, so that what has been
/// made and what is removed do not get apart.
class HeldSignals {
public:
    HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals();

private:
    sigset_t earlier_;
};

/// While it lives, a file or a folder with all that is in it is removed when SIGHUP, SIGINT,
/// SIGQUIT or SIGTERM ends the process, which then ends by that signal as it would have without.
/// A signal that was ignored stays so. Links are removed and not followed.
///
/// Several may live at once; the process has one thread.
class RemovalOnSignal {
public:
    /// `path` must be absolute, since the current folder may change. Nothing has to be there.
    explicit RemovalOnSignal(std::string path);
    RemovalOnSignal(const RemovalOnSignal&) = delete;
    RemovalOnSignal& operator=(const RemovalOnSignal&) = delete;
    /// Removes nothing.
    ~RemovalOnSignal();

private:
    static void onSignal(int number);

    static RemovalOnSignal* last_;

    std::string path_;
    RemovalOnSignal* earlier_;
};

}  // namespace marrowpress
