#pragma once

namespace marrowpress {

/// How the command ends. Ended by signal n, a process has the code 128 + n.
enum class ExitCode : int {
    kSuccess = 0,
    kRunFailed = 1,   ///< The run failed, or an output is missing or was not written.
    kWrongUsage = 2,  ///< Usage or configuration: nothing was started, written or removed.
    kFindings = 3,    ///< All was done, and findings count as `--fail-on` says.
};

}  // namespace marrowpress
