#pragma once

#include <string>
#include <vector>

#include "cli/batch/batch_setting.h"
#include "cli/batch/plan.h"

namespace marrowpress {

/// The arguments, from the command's name on, of the process that runs the job.
std::vector<std::string> workerArguments(const Plan& plan, const BatchSetting& setting,
                                         const Job& job, bool isInPlace);

/// The file of the job's page; empty when none is wanted.
std::string pageOf(const BatchSetting& setting, const std::string& id);

/// What decides on the results of a plan's jobs, besides them, as arguments.
std::vector<std::string> planArguments(const Plan& plan);

}  // namespace marrowpress
