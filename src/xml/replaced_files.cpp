#include "xml/replaced_files.h"

#include "support/paths.h"
#include "support/request_singleton.h"

namespace marrowpress {

ReplacedFiles& ReplacedFiles::instance() {
    return RequestSingleton<ReplacedFiles>::instance();
}

void ReplacedFiles::note(const std::u16string& path) {
    constexpr mode_t kPermissions = 0777;
    struct stat status {};
    if (::lstat(nativePath(path).c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        modes_.insert_or_assign(path, status.st_mode & kPermissions);
    }
}

std::optional<mode_t> ReplacedFiles::modeOf(const std::u16string& path) const {
    const auto mode = modes_.find(path);
    return mode == modes_.end() ? std::nullopt : std::optional(mode->second);
}

}  // namespace marrowpress
