#include "cli/command.h"

namespace marrowpress {
namespace {

constexpr const char* kExitCodes =
    "Exit status:\n"
    "  0      clean\n"
    "  1      the run failed, or an output is missing or was not written\n"
    "  2      usage or configuration; nothing was started, nothing written or removed\n"
    "  3      complete, with findings at or above --fail-on\n"
    "  128+n  ended by signal n\n";

}  // namespace

std::string footerText(const std::string& example, const std::string& remark) {
    return (example.empty() ? "" : "Example:\n" + example + "\n") +
           (remark.empty() ? "" : remark + "\n\n") + kExitCodes;
}

Command::Command(CLI::App& program, const std::string& name, const std::string& description,
                 const std::string& footer)
    : app_(*program.add_subcommand(name, description)), arguments_(app_) {
    app_.group(kCommandGroup);
    app_.set_help_flag("-h,--help", kHelpDescription);
    app_.footer(footer);
}

Options Command::read() {
    if (const std::optional<std::string> fault = arguments_.take()) {
        return wrongUsage(*fault);
    }
    return finish();
}

UsageError Command::explain(const CLI::ParseError& error,
                            const std::vector<std::string>& arguments) const {
    return wrongUsage(arguments_.describe(error, arguments));
}

UsageError Command::wrongUsage(const std::string& fault) const {
    return {usageErrorText(name(), fault)};
}

}  // namespace marrowpress
