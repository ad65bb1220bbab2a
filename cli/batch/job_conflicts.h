#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "cli/batch/job.h"
#include "results/file_digest.h"
#include "results/run_result.h"

namespace marrowpress {

/// A file that one job writes and another one writes or reads.
struct JobConflict {
    std::string writer;
    std::string other;
    std::string path;
    bool isRead = false;  ///< The other one reads it.
};

/// Finds jobs that get into each other's way: what they are to write and read is told first, then
/// what their results say.
class JobConflicts {
public:
    /// What the request says: a composite's output, the map, the profiles.
    void add(const Job& job);

    /// What a run has shown.
    void add(const RunResult& result);

    /// In the order of their paths.
    std::vector<JobConflict> find() const;

    /// The jobs that read what others write, each behind those whose outputs it reads; empty when
    /// jobs wait for each other in a circle.
    static std::optional<std::vector<std::string>> orderOf(
        const std::vector<JobConflict>& conflicts);

private:
    /// Jobs by their number, each once and in the order in which they were told.
    struct Use {
        std::vector<std::uint32_t> writers;
        std::vector<std::uint32_t> readers;
    };

    std::uint32_t numberOf(const std::string& id);

    /// A job that reads a file. A night's jobs may read a million.
    struct Reading {
        TextDigest path;
        std::uint32_t reader;
    };

    std::unordered_map<std::string, Use> allUses() const;

    std::vector<std::string> ids_;
    std::unordered_map<std::string, std::uint32_t> numbers_;
    std::unordered_map<std::string, Use> uses_;  ///< By path; without what results tell of readers.
    std::deque<Reading> readings_;               ///< What those tell.
};

/// As a sentence that names both.
std::string conflictText(const JobConflict& conflict);

}  // namespace marrowpress
