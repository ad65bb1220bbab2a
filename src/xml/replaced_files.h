#pragma once

#include <sys/stat.h>

#include <map>
#include <optional>
#include <string>

namespace marrowpress {

/// The rights of the files that a run removes, moves aside or overwrites, so that what comes in
/// their places is as private as they were.
class ReplacedFiles {
public:
    static ReplacedFiles& instance();

    /// The file at `path` is about to go. Only a regular file has rights to remember; the last one
    /// counts.
    void note(const std::u16string& path);

    /// The permission bits for a new file at `path`; none where nothing stood.
    std::optional<mode_t> modeOf(const std::u16string& path) const;

private:
    std::map<std::u16string, mode_t> modes_;
};

}  // namespace marrowpress
