#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "results/run_result.h"

namespace marrowpress {

/// The folder in which a batch keeps the results of its jobs: a file "ID.json" for each.
class ResultFolder {
public:
    using Warning = std::function<void(const std::string&)>;

    /// @param warn  Gets a sentence about a file that is no result, and counts as absent; one for
    ///              each, however often it is asked for.
    ResultFolder(const std::filesystem::path& folder, Warning warn);

    /// Absolute.
    const std::filesystem::path& path() const noexcept { return folder_; }
    std::filesystem::path pathOf(const std::string& id) const;

    /// Empty when the job has none.
    std::optional<RunResult> find(const std::string& id) const;
    /// The bytes of a result that `find` has found; empty when it is gone since.
    std::string textOf(const std::string& id) const;

    /// Makes the folder if it is not there.
    ///
    /// @throws FileFailure
    void make() const;

    /// Makes the folder if it is not there, and replaces the job's result.
    ///
    /// @throws FileFailure
    void put(const RunResult& result) const;

    /// From here on `find` and `textOf` give this in the place of the job's file, which stays as it
    /// is.
    void overrule(RunResult result);

    /// After this the job has not happened.
    ///
    /// @throws FileFailure
    void remove(const std::string& id) const;

private:
    void warnOnce(const std::string& id, const std::string& what) const;

    std::filesystem::path folder_;
    Warning warn_;
    mutable std::set<std::string> warned_;         ///< Ids.
    std::map<std::string, RunResult> overruling_;  ///< By the jobs' ids.
};

}  // namespace marrowpress
