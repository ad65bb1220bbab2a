#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/batch/plan.h"
#include "cli/batch/result_folder.h"

namespace marrowpress {

/// A page of HTML with a row for each job, which leads to the job's own page in `folder` where
/// there is one. It loads nothing.
std::string batchIndexPage(const Plan& plan, const std::vector<std::size_t>& indexes,
                           const ResultFolder& results, const std::string& folder);

}  // namespace marrowpress
