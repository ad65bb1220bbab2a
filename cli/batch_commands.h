#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

#include "cli/command.h"

namespace marrowpress {

/// Adds `batch` and its parts, and how it runs a job, to `program`, which must outlive them.
void addBatchCommands(CLI::App& program, std::vector<std::unique_ptr<Command>>& commands);

/// The first words of the arguments as the names of commands stand: "batch check" is "batch-check".
std::vector<std::string> withJoinedName(std::vector<std::string> arguments);

}  // namespace marrowpress
