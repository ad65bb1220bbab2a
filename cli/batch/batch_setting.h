#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace marrowpress {

/// How a batch is run.
struct BatchSetting {
    std::size_t width = 0;  ///< Jobs at one time; 0 for as many as the machine can take.
    bool failsFast = false;
    bool isNice = false;
    std::optional<std::chrono::seconds> longest;  ///< For each job.
    bool resumes = false;                         ///< Results that are up to date stay.
    bool retriesFailed = false;                   ///< As above, but failed jobs run again.
    /// Jobs of the plan that read what others write, in an order in which they can run.
    std::vector<std::size_t> late;
    std::optional<std::string> pageFolder;  ///< For a page of each job; absolute.
    std::optional<std::string> depfile;     ///< Gets the rule of the only job's result.
};

}  // namespace marrowpress
