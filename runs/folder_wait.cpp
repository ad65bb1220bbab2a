#include "runs/folder_wait.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "marrowpress/publish_status.h"

namespace marrowpress {
namespace {

/// Whether another handle on the folder than this one holds it; else this one does from then on.
bool isHeldByOther(int descriptor) {
    return ::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

}  // namespace

bool waitForFolder(const std::string& folder, std::chrono::steady_clock::time_point end) {
    return !FolderHold(folder, end).isTaken();
}

RunOutcome runInTurn(const std::string& folder, const std::function<bool()>& wait,
                     const std::function<RunOutcome()>& run) {
    RunOutcome outcome;
    do {
        if (!wait()) {
            outcome = RunOutcome();
            outcome.isFolderTaken = true;
            return outcome;
        }
        outcome = run();
        // A third run may have come between the wait and the request, which fails then at once.
    } while (outcome.status == kRunFailed && !outcome.hasBegun && !waitForFolder(folder, {}));
    return outcome;
}

FolderHold::FolderHold(const std::string& folder, std::chrono::steady_clock::time_point end)
    : descriptor_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    constexpr std::chrono::milliseconds kPause{20};
    while (descriptor_ >= 0 && isHeldByOther(descriptor_)) {
        if (std::chrono::steady_clock::now() >= end) {
            isTaken_ = true;
            return;
        }
        std::this_thread::sleep_for(kPause);
    }
}

FolderHold::~FolderHold() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

}  // namespace marrowpress
