#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "cli/command_arguments.h"
#include "cli/options.h"

namespace marrowpress {

inline constexpr const char* kHelpDescription = "Show this help";

/// The group of commands that are not parts of another one.
inline constexpr const char* kCommandGroup = "Commands";

/// The end of a help text: an example, in lines that begin with blanks, a remark, and what the exit
/// codes mean. Example and remark may be empty.
std::string footerText(const std::string& example, const std::string& remark);

/// One of the program's commands, as the library for arguments knows it.
class Command {
public:
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    std::string name() const { return app_.get_name(); }
    bool isHidden() const { return app_.get_group().empty(); }
    bool isPart() const { return !isHidden() && app_.get_group() != kCommandGroup; }

    /// The command as the library knows it; it stays the program's.
    const CLI::App& app() const { return app_; }

    /// As `CommandArguments::choicesOf`.
    std::vector<std::string> choicesOf(const CLI::Option& option) const {
        return arguments_.choicesOf(option);
    }

    /// Whether the arguments name this command.
    bool isChosen() const { return app_.parsed(); }

    /// What the arguments ask for, once they were parsed without an error.
    Options read();

    /// What to say when parsing ended with `error`. `arguments` are those of the program.
    UsageError explain(const CLI::ParseError& error,
                       const std::vector<std::string>& arguments) const;

protected:
    /// Adds the command to `program`, which must outlive it. `footer` ends its help.
    Command(CLI::App& program, const std::string& name, const std::string& description,
            const std::string& footer);

    /// What the arguments ask for, once each has its value.
    virtual Options finish() = 0;

    /// Puts it among others than all commands; the empty text leaves it out of what people are
    /// shown.
    void setGroup(const std::string& name) { app_.group(name); }

    UsageError wrongUsage(const std::string& fault) const;
    CommandArguments& arguments() { return arguments_; }

private:
    CLI::App& app_;
    CommandArguments arguments_;
};

}  // namespace marrowpress
