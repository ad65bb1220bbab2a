#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/options.h"

namespace marrowpress {

/// A deliverable: what is to be made of one map.
struct Job {
    std::string id;
    std::vector<std::string> tags;
    /// As a project file has it; empty for a job that names a request of the module.
    std::string transtype;
    /// Map, output, format, filters, DTDs, print, one-location. Paths are absolute and lexically
    /// normal when they come from a project file, else as given. No diagnostics.
    PublishOptions options;
    /// Where it stands, for messages.
    std::string file;
    std::size_t line = 0;
    /// The project file that it comes from, and all that this includes; absolute.
    std::vector<std::string> sources;
};

}  // namespace marrowpress
