#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace marrowpress {

/// What the system tells of a file without opening it. Times are nanoseconds since 1970.
struct FileStamp {
    std::uint64_t size = 0;
    std::int64_t modified = 0;  ///< The content; `touch` and copies set it to anything.
    std::int64_t changed = 0;   ///< The content or anything about it; by the system's clock.
    std::uint64_t inode = 0;
    std::uint64_t device = 0;

    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// By how much later than its stamp says a file may have been changed: some file systems, mostly of
/// networks, know whole seconds only, or every other one.
std::int64_t uncertaintyOf(const FileStamp& stamp);

/// Links are followed. Empty for what is no regular file.
std::optional<FileStamp> stampOf(const std::filesystem::path& path);

/// That of an open file. Empty also when `descriptor` is none.
std::optional<FileStamp> stampOf(int descriptor);

// Files are stamped by a clock that ticks every few milliseconds, or where the system can tell more
// exactly, by a finer one.

/// A file that is changed from now on has no earlier stamp.
std::int64_t earliestStampFromNow();

/// No file has had a later stamp until now.
std::int64_t latestStampUntilNow();

/// The longest tick of that clock.
inline constexpr std::int64_t kFileClockTick = 10'000'000;

}  // namespace marrowpress
