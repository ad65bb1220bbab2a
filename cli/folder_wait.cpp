#include "cli/folder_wait.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

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
