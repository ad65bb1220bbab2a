#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/batch/job.h"
#include "cli/batch/job_lines.h"

namespace marrowpress {

/// What is read, and what for.
struct JobFileSetting {
    std::string text;
    std::string path;                            ///< As it was given; "-" for standard input.
    std::string shown;                           ///< Names it in faults.
    std::optional<std::string> outputFolder;     ///< For project files.
    std::map<std::string, std::string> formats;  ///< By transtype.
};

/// The jobs of a project file, in XML or JSON, or of JSON Lines. Their ids are file names, and
/// differ in more than letter case.
///
/// @throws JobFileError
std::vector<Job> readJobFile(const JobFileSetting& setting);

/// Whether there is something to make of the job's transtype.
bool canBePublished(const Job& job, const std::map<std::string, std::string>& formats);

}  // namespace marrowpress
