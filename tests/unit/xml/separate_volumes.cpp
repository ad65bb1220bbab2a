#include "tests/unit/xml/separate_volumes.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace {

bool areVolumesSeparate = false;

}  // namespace

// Stands in front of the system's own for the whole program, the standard library included. Its
// parameters are called by reserved names there.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int rename(const char* from, const char* to) noexcept {
    if (areVolumesSeparate) {
        errno = EXDEV;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

namespace marrowpress {

SeparateVolumes::SeparateVolumes() {
    areVolumesSeparate = true;
}

SeparateVolumes::~SeparateVolumes() {
    areVolumesSeparate = false;
}

}  // namespace marrowpress
