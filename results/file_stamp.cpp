#include "results/file_stamp.h"

#include <sys/stat.h>

#include <ctime>

namespace marrowpress {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

std::int64_t nanoseconds(const timespec& time) {
    return std::int64_t{time.tv_sec} * kNanosecondsPerSecond + time.tv_nsec;
}

std::int64_t clockTime(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return nanoseconds(now);
}

std::optional<FileStamp> stampIn(const struct stat& status) {
    if (!S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return FileStamp{static_cast<std::uint64_t>(status.st_size), nanoseconds(status.st_mtim),
                     nanoseconds(status.st_ctim), status.st_ino, status.st_dev};
}

}  // namespace

std::int64_t uncertaintyOf(const FileStamp& stamp) {
    return stamp.changed % kNanosecondsPerSecond == 0 ? 2 * kNanosecondsPerSecond : 0;
}

std::optional<FileStamp> stampOf(const std::filesystem::path& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? stampIn(status) : std::nullopt;
}

std::optional<FileStamp> stampOf(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 ? stampIn(status) : std::nullopt;
}

std::int64_t earliestStampFromNow() {
    return clockTime(CLOCK_REALTIME_COARSE);
}

std::int64_t latestStampUntilNow() {
    return clockTime(CLOCK_REALTIME);
}

}  // namespace marrowpress
