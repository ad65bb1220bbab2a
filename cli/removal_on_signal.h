#pragma once

#include <sys/stat.h>

#include <csignal>
#include <cstdint>
#include <optional>
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

/// While it lives, the first SIGHUP, SIGINT or SIGTERM is only noted, so that a run can end in good
/// order: at the end of this object it does what it would have done at once. Any further signal
/// does so where it comes, and so does SIGQUIT. A signal that was ignored stays so.
///
/// One may live at a time; the process has one thread.
class DeferredSignal {
public:
    DeferredSignal();
    DeferredSignal(const DeferredSignal&) = delete;
    DeferredSignal& operator=(const DeferredSignal&) = delete;
    ~DeferredSignal();

    /// Whether a signal waits for the end of the one that lives.
    static bool hasCome() noexcept;
};

/// Ends the process by a signal, once all is in order.
[[noreturn]] void endBySignal(int signal);

/// What goes when a signal comes.
enum class Removal : std::uint8_t {
    kAll,          ///< The file, or the folder with all that is in it.
    kEmptyFolder,  ///< The folder, if nothing is in it then.
    kFile,         ///< Any file, and never a folder.
    kNewFile,  ///< A file, unless it was there at the beginning and nobody has touched it since.
};

/// While it lives, what is at its path is removed when SIGHUP, SIGINT, SIGQUIT or SIGTERM ends the
/// process, which then ends by that signal as it would have without. A signal that was ignored
/// stays so. Links are removed and not followed.
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
    friend class SignalHandlers;

    void removeNow() const;

    static RemovalOnSignal* last_;

    std::string path_;
    Removal removal_;
    std::optional<struct stat> earlierFile_;
    RemovalOnSignal* earlier_;
};

}  // namespace marrowpress
