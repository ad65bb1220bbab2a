#pragma once

#include <chrono>
#include <string>

#include "cli/batch/job_outcome.h"
#include "cli/batch/job_process.h"
#include "cli/batch/plan.h"
#include "results/run_result.h"
#include "results/up_to_date.h"

namespace marrowpress {

/// What the result of a job of the plan has to be of.
WantedRun wantedRunOf(const Plan& plan, const Job& job);

/// The result that the process of a job has told, or for one that came to nothing the result that
/// says why, in one finding.
///
/// @param longest  That the job was given.
RunResult resultOf(const Plan& plan, const Job& job, const JobEnd& end,
                   std::chrono::seconds longest);

/// In numbers.
JobOutcome outcomeOf(const RunResult& result);

/// The result of a job that has read what another one wrote, or has written what that one read.
RunResult withConflict(RunResult result, const std::string& other, const std::string& path);

}  // namespace marrowpress
