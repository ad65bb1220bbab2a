#include "cli/folder_wait.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace marrowpress {
namespace {

bool isHeld(const std::string& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool isTaken = ::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(descriptor);
    return isTaken;
}

}  // namespace

bool waitForFolder(const std::string& folder, std::chrono::steady_clock::time_point end) {
    constexpr std::chrono::milliseconds kPause{20};
    while (isHeld(folder)) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        std::this_thread::sleep_for(kPause);
    }
    return true;
}

}  // namespace marrowpress
