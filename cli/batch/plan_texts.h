#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/batch/plan.h"
#include "cli/batch_options.h"

/// What is told of a plan's jobs without running any.
namespace marrowpress {

/// A row for each of those jobs.
std::string jobTableText(const Plan& plan, const std::vector<std::size_t>& indexes);

/// The requests of those jobs, and their outputs, with a word where a file would be replaced.
std::string dryRunText(const Plan& plan, const std::vector<std::size_t>& indexes);

/// The script by which an engine runs the plan's jobs.
///
/// @param results  Their folder, absolute.
/// @throws BatchFault when the engine needs a plan's file and the options name none, or when it has
///         no way to name a path.
std::string engineScriptText(const BatchOptions& options, const Plan& plan,
                             const std::filesystem::path& results);

}  // namespace marrowpress
