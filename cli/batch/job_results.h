#pragma once

#include <chrono>
#include <cstdint>
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

/// Whether the job came to nothing for want of memory: because it says so, or because it was killed
/// when the kernel killed for that. Anybody can send that signal; why, only the kernel knows.
///
/// @param memoryKills  How many processes the kernel has killed since the job began.
bool lackedMemory(const JobEnd& end, const RunResult& result, std::uint64_t memoryKills);

}  // namespace marrowpress
