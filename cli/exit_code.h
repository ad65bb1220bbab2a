#pragma once

namespace marrowpress {

/// How the command ends.
enum class ExitCode : int {
    kSuccess = 0,
    kRunFailed = 1,   ///< The run failed, or its result could not be written.
    kWrongUsage = 2,  ///< Nothing was started: the arguments, or a file they name, are at fault.
};

}  // namespace marrowpress
