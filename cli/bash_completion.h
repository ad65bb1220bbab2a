#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/command.h"

namespace marrowpress {

/// The script that teaches bash to complete the program's command line: its commands, their
/// options, values, files by their endings, and for `--explain` the keys of a map, which it asks
/// the program for. `commands` are all of the program's.
std::string bashCompletion(const std::vector<std::unique_ptr<Command>>& commands);

}  // namespace marrowpress
