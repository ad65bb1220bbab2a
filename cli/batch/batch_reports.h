#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/batch/plan.h"
#include "cli/batch/result_folder.h"
#include "cli/batch_options.h"

namespace marrowpress {

/// The page over those of the jobs, in their folder.
inline constexpr const char* kIndexPageName = "index.html";

/// Why nothing must be started with the files that are to be written beside the jobs' outputs: the
/// merged reports, a plan, a depfile. Empty when it may.
std::optional<std::string> findBatchReportFault(const BatchOptions& options, const Plan& plan,
                                                const ResultFolder& results);

/// Writes what was asked for of the merged reports, from the results in their folder alone, so that
/// whoever ran the jobs makes no difference.
///
/// @param indexes  Those jobs of the plan that count.
/// @param exit     What the batch comes to.
/// @throws FileFailure
void writeBatchReports(const BatchReports& reports, const Plan& plan,
                       const std::vector<std::size_t>& indexes, const ResultFolder& results,
                       int exit);

}  // namespace marrowpress
