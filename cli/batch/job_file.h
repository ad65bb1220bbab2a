#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/batch/job.h"
#include "cli/batch/job_lines.h"

namespace marrowpress {

/// A file of jobs that was read.
struct JobFileSetting {
    std::string text;
    std::string path;                            ///< As it was given; "-" for standard input.
    std::string shown;                           ///< Names it in faults.
    std::optional<std::string> outputFolder;     ///< For project files.
    std::map<std::string, std::string> formats;  ///< By transtype.
};

/// The jobs of a project file or of JSON Lines.
///
/// @throws JobFileError
std::vector<Job> readJobFile(const JobFileSetting& setting);

}  // namespace marrowpress
