#include "cli/removal_on_signal.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string_view>

// What runs in a signal handler may call what is async-signal-safe, and nothing else: no memory is
// taken, and folders are read by the system's call itself.

namespace marrowpress {
namespace {

constexpr std::array kSignals{SIGHUP, SIGINT, SIGQUIT, SIGTERM};

/// What each of the signals did before the first removal was asked for.
std::array<struct sigaction, kSignals.size()> earlierActions;

sigset_t signalSet() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : kSignals) {
        sigaddset(&set, number);
    }
    return set;
}

bool remove(int folder, const char* name);

/// Whether anything was removed from the open folder.
bool removeEntries(int folder) {
    alignas(dirent64) std::array<char, 4096> block;
    bool hasRemoved = false;
    lseek(folder, 0, SEEK_SET);
    while (true) {
        const ssize_t size = getdents64(folder, block.data(), block.size());
        if (size <= 0) {
            return hasRemoved;
        }
        for (ssize_t at = 0; at < size;) {
            const auto* const entry = reinterpret_cast<const dirent64*>(block.data() + at);
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..") {
                hasRemoved |= remove(folder, entry->d_name);
            }
            at += entry->d_reclen;
        }
    }
}

/// Removes a file, or a folder with all that is in it, seen from `folder`; false when it stays.
bool remove(int folder, const char* name) {
    if (unlinkat(folder, name, 0) == 0) {
        return true;
    }
    const int opened = openat(folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (opened < 0) {
        return false;
    }
    // A list may leave something out when entries go while it is read.
    while (removeEntries(opened)) {
    }
    close(opened);
    return unlinkat(folder, name, AT_REMOVEDIR) == 0;
}

bool areEqual(const timespec& left, const timespec& right) {
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

/// Whether both are of one file that nobody has changed in between.
bool areSame(const struct stat& before, const struct stat& now) {
    return before.st_dev == now.st_dev && before.st_ino == now.st_ino &&
           before.st_size == now.st_size && areEqual(before.st_mtim, now.st_mtim) &&
           areEqual(before.st_ctim, now.st_ctim);
}

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

/// What a `DeferredSignal` knows; 0 while no signal has come.
bool isDeferring = false;
volatile std::sig_atomic_t deferredSignal = 0;

void restoreHandlers() {
    for (std::size_t index = 0; index < kSignals.size(); ++index) {
        sigaction(kSignals[index], &earlierActions[index], nullptr);
    }
}

}  // namespace

/// The handlers of this process, from the first that needs them to the last.
class SignalHandlers {
public:
    static void add() {
        if (users_ == 0) {
            install();
        }
        ++users_;
    }

    static void drop() {
        --users_;
        if (users_ == 0) {
            restoreHandlers();
        }
    }

private:
    static void install() {
        struct sigaction action {};
        action.sa_handler = onSignal;
        action.sa_mask = signalSet();
        // A run that goes on for a while is not to take a signal for a failure.
        action.sa_flags = SA_RESTART;
        for (std::size_t index = 0; index < kSignals.size(); ++index) {
            sigaction(kSignals[index], nullptr, &earlierActions[index]);
            if (earlierActions[index].sa_handler != SIG_IGN) {
                sigaction(kSignals[index], &action, nullptr);
            }
        }
    }

    static void onSignal(int number) {
        if (isDeferring && deferredSignal == 0 && number != SIGQUIT) {
            deferredSignal = number;
            return;
        }
        for (const RemovalOnSignal* removal = RemovalOnSignal::last_; removal;
             removal = removal->earlier_) {
            removal->removeNow();
        }
        restoreHandlers();
        // It is held back until this handler returns, and then does what it did before.
        raise(number);
    }

    static inline int users_ = 0;
};

HeldSignals::HeldSignals() {
    const sigset_t set = signalSet();
    sigprocmask(SIG_BLOCK, &set, &earlier_);
}

HeldSignals::~HeldSignals() {
    sigprocmask(SIG_SETMASK, &earlier_, nullptr);
}

DeferredSignal::DeferredSignal() {
    const HeldSignals held;
    SignalHandlers::add();
    isDeferring = true;
}

DeferredSignal::~DeferredSignal() {
    int number = 0;
    {
        const HeldSignals held;
        number = deferredSignal;
        deferredSignal = 0;
        isDeferring = false;
        SignalHandlers::drop();
    }
    if (number != 0) {
        raise(number);
    }
}

bool DeferredSignal::hasCome() noexcept {
    return deferredSignal != 0;
}

RemovalOnSignal* RemovalOnSignal::last_ = nullptr;

RemovalOnSignal::RemovalOnSignal(std::string path, Removal removal)
    : path_(std::move(path)), removal_(removal), earlierFile_(statusOf(path_)) {
    const HeldSignals held;
    SignalHandlers::add();
    earlier_ = last_;
    last_ = this;
}

RemovalOnSignal::~RemovalOnSignal() {
    const HeldSignals held;
    RemovalOnSignal** link = &last_;
    while (*link != this) {
        link = &(*link)->earlier_;
    }
    *link = earlier_;
    SignalHandlers::drop();
}

void RemovalOnSignal::removeNow() const {
    if (removal_ == Removal::kAll) {
        remove(AT_FDCWD, path_.c_str());
        return;
    }
    if (removal_ == Removal::kEmptyFolder) {
        rmdir(path_.c_str());
        return;
    }
    struct stat status {};
    const bool isUntouched = removal_ == Removal::kNewFile && earlierFile_ &&
                             lstat(path_.c_str(), &status) == 0 && areSame(*earlierFile_, status);
    if (!isUntouched) {
        unlink(path_.c_str());
    }
}

void endBySignal(int signal) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    constexpr int kSignalBase = 128;
    std::_Exit(kSignalBase + signal);
}

}  // namespace marrowpress
