#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "cli/batch/job.h"
#include "cli/options.h"

namespace marrowpress {

/// The form of plans that is written, and the only one that is read.
inline constexpr int kPlanVersion = 1;

/// What a batch is to do, whole: jobs in their order, and all that their results depend on besides
/// files.
struct Plan {
    bool isCheck = false;
    std::vector<std::string> catalogs;  ///< Absolute.
    DiagnosticsOptions diagnostics;     ///< What counts, and in which language.
    std::vector<Job> jobs;              ///< All paths are absolute.
    std::string digest;                 ///< Of all the rest.
};

/// The plan of `jobs`, with absolute paths, and its digest.
Plan makePlan(std::vector<Job> jobs, bool isCheck, const std::vector<std::string>& catalogs,
              const DiagnosticsOptions& diagnostics);

/// A job as a line of a plan, with the line's end.
std::string jobLine(const Job& job);

/// JSON Lines: the head, and a line for each job.
std::string planText(const Plan& plan);

/// Whether `text` begins as plans do.
bool isPlan(std::string_view text);

/// The file is no plan, or was changed by hand, or is of another version.
class PlanError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// @param file  Names it in messages.
/// @throws PlanError that says what is wrong.
Plan parsePlan(const std::string& text, const std::string& file);

}  // namespace marrowpress
