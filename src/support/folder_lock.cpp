#include "support/folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <string>

#include "support/paths.h"

namespace marrowpress {

FolderLock::FolderLock(std::u16string_view folder)
    : descriptor_(::open(folder.empty() ? "." : nativePath(folder).c_str(),
                         O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (descriptor_ && ::flock(descriptor_.get(), LOCK_EX | LOCK_NB) != 0) {
        isTaken_ = errno == EWOULDBLOCK;
    }
}

}  // namespace marrowpress
