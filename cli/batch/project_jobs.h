#pragma once

#include <map>
#include <string>
#include <vector>

#include "cli/batch/job.h"

namespace marrowpress {

/// What a project file is read for.
struct ProjectSetting {
    std::string text;
    std::string path;                            ///< As it was given; "-" for standard input.
    std::string shown;                           ///< Names it in faults.
    std::string outputFolder;                    ///< From which outputs count.
    std::map<std::string, std::string> formats;  ///< By transtype: "composite", "flatbook".
};

/// The jobs of a DITA-OT project file and of those that it includes, of whatever transtype.
///
/// @throws JobFileError
std::vector<Job> readProject(const ProjectSetting& setting);

}  // namespace marrowpress
