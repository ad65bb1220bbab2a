#include "cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <utility>

#include "cli/bash_completion.h"
#include "cli/batch_commands.h"
#include "cli/command.h"
#include "cli/commands.h"
#include "cli/help_formatter.h"
#include "cli/version_text.h"

namespace marrowpress {
namespace {

/// The arguments as the parser takes them: off the back.
///
/// For a list of values it reads "[a,b]" as two of them. With "./" in front, the argument is the
/// same file and no list; all that `host` takes are files.
std::vector<std::string> toParserOrder(const std::vector<std::string>& arguments) {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    if (reversed.empty() || reversed.back() != "host") {
        return reversed;
    }
    for (std::string& argument : reversed) {
        if (argument.starts_with('[') && argument.ends_with(']')) {
            argument.insert(0, "./");
        }
    }
    return reversed;
}

/// What stands behind the first "--" of `watch` is a command of its own, and taken out of
/// `arguments`.
std::vector<std::string> takeCommand(std::vector<std::string>& arguments) {
    if (arguments.empty() || arguments.front() != "watch") {
        return {};
    }
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    std::vector<std::string> command(end == arguments.end() ? end : end + 1, arguments.end());
    arguments.erase(end, arguments.end());
    return command;
}

UsageError wrongProgramUsage(const std::string& fault) {
    return {usageErrorText("", fault)};
}

/// The program as the library for arguments knows it, with all of its commands.
class Program {
public:
    explicit Program(std::size_t helpWidth) {
        app_.formatter(std::make_shared<HelpFormatter>(helpWidth));
        app_.require_subcommand(1);
        app_.set_help_flag("-h,--help", kHelpDescription);
        app_.set_version_flag("-V,--version", "", kVersionDescription);
        app_.footer(footerText(kPublishExample,
                               "`marrowpress help COMMAND` shows what a command "
                               "takes."));
        commands_ = makeCommands(app_);
    }

    Options parse(const std::vector<std::string>& arguments) {
        if (const std::optional<std::string> fault = findNameFault(arguments)) {
            return wrongProgramUsage(*fault);
        }
        try {
            app_.parse(toParserOrder(arguments));
            return answered(chosen()->read());
        } catch (const CLI::CallForVersion&) {
            return Information{versionText()};
        } catch (const CLI::CallForHelp&) {
            return Information{app_.help()};
        } catch (const CLI::ParseError& error) {
            return explain(error, arguments);
        }
    }

private:
    /// What only the program as a whole can tell is told.
    Options answered(Options options) const {
        const auto* const completion = std::get_if<CompletionOptions>(&options);
        return completion && !completion->map ? Information{bashCompletion(commands_)} : options;
    }

    /// What is wrong with the place where the command's name stands.
    std::optional<std::string> findNameFault(const std::vector<std::string>& arguments) const {
        const std::vector<std::string> names = commandNames(app_);
        if (arguments.empty()) {
            std::string text = "a command is missing; known:";
            for (const std::string& name : names) {
                text += (name == names.front() ? " " : ", ") + name;
            }
            return text;
        }
        const std::string& name = arguments.front();
        if (name.starts_with('-') || hasCommand(app_, name)) {
            return std::nullopt;
        }
        return unknownCommandText(app_, name);
    }

    /// The command that the arguments name; null when they name none.
    Command* chosen() const {
        const auto found = std::find_if(commands_.begin(), commands_.end(),
                                        [](const auto& command) { return command->isChosen(); });
        return found == commands_.end() ? nullptr : found->get();
    }

    UsageError explain(const CLI::ParseError& error, const std::vector<std::string>& arguments) {
        const Command* const command = chosen();
        // What stands in front of the command is the program's.
        if (command && app_.remaining().empty()) {
            return command->explain(error, arguments);
        }
        return wrongProgramUsage(CommandArguments(app_).describe(error, arguments));
    }

    CLI::App app_{"Publishes DITA maps through the Marrowpress client module.", kProgramName};
    std::vector<std::unique_ptr<Command>> commands_;
};

}  // namespace

Options parseOptions(const std::vector<std::string>& arguments, std::size_t helpWidth) {
    std::vector<std::string> own = withJoinedName(arguments);
    std::vector<std::string> command = takeCommand(own);
    Options options = Program(helpWidth).parse(own);
    if (auto* const watch = std::get_if<WatchOptions>(&options)) {
        watch->command = std::move(command);
    }
    return options;
}

}  // namespace marrowpress
