#pragma once

#include <optional>
#include <set>
#include <string>

#include "cli/batch/job.h"
#include "results/run_result.h"
#include "results/up_to_date.h"

namespace marrowpress {

/// Whether the job has to run where its output is to stand, and so alone: a flat book, whose
/// components name each other by their paths, and a composite that would be another one in a
/// private folder, as far as the request or an earlier result tells. What neither tells, the run
/// does.
bool needsItsPlace(const Job& job, const std::optional<RunResult>& earlier);

/// The folders in which a flat book writes, and those in which it reads.
struct BookFolders {
    std::set<std::string> written;
    std::set<std::string> read;
};

/// As an earlier result tells; empty where it does not: when it is of another request, or when
/// anything but topics is not what it was, since maps and profiles decide which components there
/// are.
std::optional<BookFolders> findBookFolders(const RunResult& earlier, const WantedRun& wanted,
                                           FileComparison& files);

/// Whether two books can be made at the same time: neither writes where the other reads or writes.
bool areApart(const BookFolders& left, const BookFolders& right);

}  // namespace marrowpress
