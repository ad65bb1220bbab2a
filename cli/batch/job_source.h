#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/batch/plan.h"
#include "cli/batch_options.h"

namespace marrowpress {

/// Why a batch must not be started, as a sentence.
class BatchFault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The jobs that the options name, as a plan: that of a plan's file, or one made of a file of jobs.
///
/// @param passedOver  Gets those that are not among them, because their transtype is another one.
/// @throws BatchFault
Plan planOf(const BatchOptions& options, std::vector<std::string>& passedOver);

/// Whether the file at `path` begins as plans do.
bool isPlanFile(const std::string& path);

/// The plan in the file of `--plan`.
///
/// @throws BatchFault
Plan readPlan(const std::string& path);

/// The jobs of the plan that the options select, in its order.
///
/// @throws BatchFault when there are none.
std::vector<std::size_t> selectedJobs(const BatchOptions& options, const Plan& plan);

}  // namespace marrowpress
