#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace marrowpress {

/// How the built command is started; every member may be left as it is.
struct CommandSetting {
    std::string input;                     ///< What stands on standard input.
    std::optional<std::string> inputFile;  ///< What to read as standard input; "" closes it.
    std::optional<std::string> output;     ///< A file to take standard output; "" closes it.
    std::optional<std::string> catalogs;   ///< XML_CATALOG_FILES; not set without it.
    std::optional<std::string> locale;     ///< LC_ALL; that of the test without it.
    std::optional<unsigned> largestFile;   ///< Bytes that the command may write to one file.
};

/// What the command left behind.
struct CommandResult {
    int code;         ///< The exit status; 1000 and the signal for a process that was killed.
    std::string out;  ///< Empty when standard output went elsewhere.
    std::string err;
};

/// Runs the built command with `arguments`, in `folder` as its current directory.
CommandResult runCommand(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                         const CommandSetting& setting = {});

}  // namespace marrowpress
