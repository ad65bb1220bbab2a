#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "results/run_result.h"

namespace marrowpress {

/// Files on which results depend, there or not, and what they were when somebody looked last.
/// Paths are absolute.
class FollowedFiles {
public:
    /// What the result depends on, as its run has found it. Outputs are left out, whoever reads
    /// them.
    void add(const RunResult& result);

    /// One that no result tells of, but that was read at some time after `begin`, which is of
    /// `earliestStampFromNow`.
    void add(const std::string& path, std::int64_t begin);

    /// The files that hold something else than the last time, or are there and were not, or the
    /// reverse. From now on they count as they are.
    std::vector<std::string> takeChanges();

    std::vector<std::string> paths() const;
    std::size_t size() const noexcept { return files_.size(); }

private:
    struct Known {
        std::optional<KnownFile> file;  ///< Empty while it is not there.
        /// Nobody can have changed it without changing its stamp.
        bool isStampEnough = true;
    };

    static bool lookAgain(const std::string& path, Known& known);

    std::map<std::string, Known> files_;
    std::set<std::string> outputs_;
};

}  // namespace marrowpress
