#pragma once

#include <optional>
#include <string>

#include "cli/batch/plan.h"
#include "cli/batch/result_folder.h"
#include "cli/batch_options.h"

namespace marrowpress {

/// Why results and pages must not be written where they are to be, as a sentence that names the
/// argument; empty when they may: their folders can be made and written to, no result takes the
/// place of a file that the batch reads or of an output, and no page that of the index.
std::optional<std::string> findResultPlaceFault(const BatchOptions& options, const Plan& plan,
                                                const ResultFolder& results);

}  // namespace marrowpress
