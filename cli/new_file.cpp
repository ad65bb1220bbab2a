#include "cli/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

#include "cli/file_failure.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kHeldBackAtMost = 65536;

[[noreturn]] void fail(const fs::path& path) {
    throw FileFailure::ofLastCall(FileAction::kWrite, path);
}

}  // namespace

fs::path passingPath(const fs::path& folder) {
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    return folder / (".marrowpress-" + std::to_string(getpid()) + "-" + std::to_string(now));
}

NewFile::NewFile(fs::path path, fs::path wanted, std::optional<mode_t> mode)
    : path_(std::move(path)),
      wanted_(std::move(wanted)),
      removal_(path_.string(), Removal::kNewFile) {
    constexpr mode_t kUsual = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    descriptor_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                       mode.value_or(kUsual));
    if (descriptor_ < 0) {
        fail(errno == EEXIST ? path_ : wanted_);
    }
    isThere_ = true;
    if (mode) {
        setMode(*mode);
    }
    heldBack_.reserve(kHeldBackAtMost);
}

NewFile::~NewFile() {
    remove();
}

/// The process may give new files fewer rights than were asked for.
void NewFile::setMode(mode_t mode) {
    if (fchmod(descriptor_, mode) != 0) {
        const int error = errno;
        remove();
        errno = error;
        fail(wanted_);
    }
}

void NewFile::write(std::string_view bytes) {
    if (heldBack_.size() + bytes.size() > kHeldBackAtMost) {
        flush();
    }
    heldBack_ += bytes;
}

void NewFile::close() {
    flush();
    if (::close(std::exchange(descriptor_, -1)) != 0) {
        fail(wanted_);
    }
}

void NewFile::replace(const fs::path& path) {
    if (rename(path_.c_str(), path.c_str()) != 0) {
        fail(wanted_);
    }
    isThere_ = false;
}

bool NewFile::moveTo(const fs::path& path) {
    if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
        isThere_ = false;
        return true;
    }
    if (errno == EEXIST) {
        return false;
    }
    // Not every file system looks and renames in one step.
    if (errno != EINVAL && errno != ENOSYS) {
        fail(wanted_);
    }
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(path, ignored))) {
        return false;
    }
    replace(path);
    return true;
}

void NewFile::flush() {
    std::string_view rest = heldBack_;
    while (!rest.empty()) {
        const ssize_t count = ::write(descriptor_, rest.data(), rest.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            fail(wanted_);
        }
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
    heldBack_.clear();
}

void NewFile::remove() {
    if (descriptor_ >= 0) {
        ::close(std::exchange(descriptor_, -1));
    }
    if (isThere_) {
        unlink(path_.c_str());
        isThere_ = false;
    }
}

}  // namespace marrowpress
