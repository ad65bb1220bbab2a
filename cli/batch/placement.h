#pragma once

#include <optional>

#include "cli/batch/job.h"
#include "results/run_result.h"

namespace marrowpress {

/// Whether the job has to run where its output is to stand, and so alone: a flat book, whose
/// components name each other by their paths, and a composite that would be another one in a
/// private folder, as far as the request or an earlier result tells. What neither tells, the run
/// does.
bool needsItsPlace(const Job& job, const std::optional<RunResult>& earlier);

}  // namespace marrowpress
