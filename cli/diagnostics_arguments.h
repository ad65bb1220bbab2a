#pragma once

#include <optional>
#include <string>

#include "cli/command_arguments.h"
#include "cli/diagnostics_options.h"

namespace marrowpress {

/// Adds `--lang`.
void addLanguage(CommandArguments& arguments, Language& target);

/// What findings mean to a command.
enum class FindingsCount {
    kForExitCode,
    kForNothing,
};

/// Adds the options about findings, which all commands that have findings share.
void addDiagnostics(CommandArguments& arguments, DiagnosticsOptions& target,
                    FindingsCount count = FindingsCount::kForExitCode);

/// Adds `--diagnostics`.
void addDiagnosticsFormat(CommandArguments& arguments, DiagnosticsOptions& target);

/// Adds what decides on the findings of many runs at once.
void addBatchDiagnostics(CommandArguments& arguments, DiagnosticsOptions& target);

/// Adds what is shown on a terminal besides findings, and how.
void addTerminal(CommandArguments& arguments, DiagnosticsOptions& target);

/// Adds the options about what a run costs.
void addMeasures(CommandArguments& arguments, DiagnosticsOptions& target);

/// Adds `--report`.
void addReport(CommandArguments& arguments, DiagnosticsOptions& target);

/// The sentence about options that contradict each other; empty when none do.
std::optional<std::string> findDiagnosticsFault(const DiagnosticsOptions& options);

/// The sentence about an id that no finding has.
std::string unknownIdText(const std::string& id);

}  // namespace marrowpress
