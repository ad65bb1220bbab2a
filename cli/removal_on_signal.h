#pragma once

#include <csignal>
#include <cstdint>
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

/// How much goes when a signal comes.
enum class Removal : std::uint8_t {
    kAll,          ///< The file, or the folder with all that is in it.
    kEmptyFolder,  ///< The folder, if nothing is in it then.
};

/// While it lives, a file or a folder is removed when SIGHUP, SIGINT,
/// SIGQUIT or SIGTERM ends the process, which then ends by that signal as it would have without.
/// A signal that was ignored stays so. Links are removed and not followed.
///
/// Several may live at once, of which the last goes first; the process has one thread.
class RemovalOnSignal {
public:
    /// `path` must be absolute, since the current folder may change. Nothing has to be there.
    explicit RemovalOnSignal(std::string path, Removal removal = Removal::kAll);
    RemovalOnSignal(const RemovalOnSignal&) = delete;
    RemovalOnSignal& operator=(const RemovalOnSignal&) = delete;
    /// Removes nothing.
    ~RemovalOnSignal();

private:
    static void onSignal(int number);

    static RemovalOnSignal* last_;

    std::string path_;
    Removal removal_;
    RemovalOnSignal* earlier_;
};

}  // namespace marrowpress
