#include "cli/options.h"

#include <string_view>

namespace marrowpress {

std::string shownCommand(const std::string& name) {
    constexpr std::string_view kBatch = "batch-";
    return name.starts_with(kBatch) ? "batch " + name.substr(kBatch.size()) : name;
}

std::string usageErrorText(const std::string& command, const std::string& fault) {
    const std::string name =
        command.empty() ? kProgramName : std::string(kProgramName) + " " + shownCommand(command);
    return name + ": " + fault + "\nRun `" + name + " --help` for help.\n";
}

}  // namespace marrowpress
