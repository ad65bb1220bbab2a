#include "cli/removal_on_signal.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
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

void setHandlers(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_mask = signalSet();
    for (std::size_t index = 0; index < kSignals.size(); ++index) {
        sigaction(kSignals[index], nullptr, &earlierActions[index]);
        if (earlierActions[index].sa_handler != SIG_IGN) {
            sigaction(kSignals[index], &action, nullptr);
        }
    }
}

void restoreHandlers() {
    for (std::size_t index = 0; index < kSignals.size(); ++index) {
        sigaction(kSignals[index], &earlierActions[index], nullptr);
    }
}

}  // namespace

HeldSignals::HeldSignals() {
    const sigset_t set = signalSet();
    sigprocmask(SIG_BLOCK, &set, &earlier_);
}

HeldSignals::~HeldSignals() {
    sigprocmask(SIG_SETMASK, &earlier_, nullptr);
}

RemovalOnSignal* RemovalOnSignal::last_ = nullptr;

RemovalOnSignal::RemovalOnSignal(std::string path, Removal removal)
    : path_(std::move(path)), removal_(removal) {
    const HeldSignals held;
    if (!last_) {
        setHandlers(onSignal);
    }
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
    if (!last_) {
        restoreHandlers();
    }
}

void RemovalOnSignal::onSignal(int number) {
    for (const RemovalOnSignal* removal = last_; removal; removal = removal->earlier_) {
        if (removal->removal_ == Removal::kEmptyFolder) {
            rmdir(removal->path_.c_str());
        } else {
            remove(AT_FDCWD, removal->path_.c_str());
        }
    }
    restoreHandlers();
    // It is held back until this handler returns, and then does what it did before.
    raise(number);
}

}  // namespace marrowpress
