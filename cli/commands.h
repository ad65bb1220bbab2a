#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "cli/command.h"

namespace marrowpress {

/// An example that publishes the guide of the project, for help texts.
inline constexpr const char* kPublishExample =
    "  marrowpress publish \\\n"
    "      examples/drill-guide/drill-guide.ditamap -f composite -o drill-guide.dita\n";

inline constexpr const char* kVersionDescription = "Show the version, and those of the libraries";

/// Adds all commands to `program`, which must outlive them; in the order of the help.
std::vector<std::unique_ptr<Command>> makeCommands(CLI::App& program);

/// The sentence about a command that `program` doesn't have.
std::string unknownCommandText(const CLI::App& program, const std::string& name);

/// Whether `program` has a command of that name, shown or not.
bool hasCommand(const CLI::App& program, const std::string& name);

/// The names of all commands of `program` that are shown, without the parts of one.
std::vector<std::string> commandNames(const CLI::App& program);

}  // namespace marrowpress
