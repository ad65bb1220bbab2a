#include "cli/waited_signals.h"

#include <initializer_list>

namespace marrowpress {
namespace {

bool isHangUpIgnored() {
    struct sigaction action {};
    return sigaction(SIGHUP, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

sigset_t waitedSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGCHLD, SIGINT, SIGTERM}) {
        sigaddset(&signals, number);
    }
    if (!isHangUpIgnored()) {
        sigaddset(&signals, SIGHUP);
    }
    return signals;
}

BlockedSignals::BlockedSignals() {
    std::signal(SIGCHLD, SIG_DFL);
    const sigset_t signals = waitedSignals();
    sigprocmask(SIG_BLOCK, &signals, &earlier_);
}

BlockedSignals::~BlockedSignals() {
    sigprocmask(SIG_SETMASK, &earlier_, nullptr);
}

}  // namespace marrowpress
