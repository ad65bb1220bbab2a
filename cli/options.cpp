#include "cli/options.h"

namespace marrowpress {

std::string usageErrorText(const std::string& command, const std::string& fault) {
    const std::string name =
        command.empty() ? kProgramName : std::string(kProgramName) + " " + command;
    return name + ": " + fault + "\nRun `" + name + " --help` for help.\n";
}

}  // namespace marrowpress
