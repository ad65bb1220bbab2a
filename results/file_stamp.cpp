#include "results/file_stamp.h"

#include <sys/stat.h>

#include <ctime>

namespace marrowpress {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

std::int64_t nanoseconds(const timespec& time) {
    return std::int64_t{time.tv_sec} * kNanosecondsPerSecond + time.tv_nsec;
}

}  // namespace

std::optional<FileStamp> stampOf(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return FileStamp{static_cast<std::uint64_t>(status.st_size), nanoseconds(status.st_mtim),
                     nanoseconds(status.st_ctim), status.st_ino, status.st_dev};
}

std::int64_t fileClockNow() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return nanoseconds(now);
}

}  // namespace marrowpress
