#include "cli/batch/run_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace marrowpress {

RunLock::RunLock(const std::filesystem::path& folder)
    : descriptor_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

RunLock::~RunLock() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

bool RunLock::tryToHold(Kind kind) const {
    const int way = kind == Kind::kAlone ? LOCK_EX : LOCK_SH;
    return descriptor_ < 0 || flock(descriptor_, way | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

}  // namespace marrowpress
