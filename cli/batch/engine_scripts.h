#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/batch/plan.h"
#include "cli/batch_options.h"

namespace marrowpress {

/// What a script for an engine is made of. Paths are absolute.
struct EngineScript {
    Engine engine;
    const Plan& plan;
    std::string program;   ///< The command `marrowpress`.
    std::string planFile;  ///< Where the plan is, or is made by the script.
    std::string results;   ///< The folder of results.
    /// The command that makes the plan, for make and ninja; empty for a plan that is there.
    std::string planCommand;
    std::vector<std::string> planSources;  ///< The files that the plan is made of.
    /// The one from which texts of results name files, wherever the engine starts a job.
    std::string folder = "/";
};

/// A script or manifest by which the engine runs each job of the plan, with comments that say how
/// it is called. The same index always means the same job.
std::string engineScript(const EngineScript& script);

/// The first path of the script that its engine has no way to name; none when it can name all.
std::optional<std::string> findUnnameable(const EngineScript& script);

/// `text` as one word for a POSIX shell.
std::string shellWord(const std::string& text);

}  // namespace marrowpress
