#pragma once

#include <cstddef>
#include <vector>

#include "cli/batch/job_conflicts.h"
#include "cli/batch/plan.h"
#include "cli/batch/result_folder.h"

namespace marrowpress {

/// Jobs that get into each other's way, as far as their requests and earlier results tell. What
/// only a result tells counts while the job would do again what it did then: its request is the
/// same, and so are the files that it has read, but for those that are in question.
///
/// @param jobs         Of the plan, whose requests count.
/// @param withResults  Those of them whose results count, too.
std::vector<JobConflict> findKnownConflicts(const Plan& plan, const std::vector<std::size_t>& jobs,
                                            const std::vector<std::size_t>& withResults,
                                            const ResultFolder& results);

}  // namespace marrowpress
