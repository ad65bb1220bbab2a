#pragma once

#include "cli/command_arguments.h"

namespace marrowpress {

/// Adds `--poll`.
inline void addPolling(CommandArguments& arguments, bool& target) {
    arguments.addFlag("--poll", target,
                      "Look at the files every second, and wait for no events: those of folders "
                      "of the network are told only to the machine that changes them");
}

}  // namespace marrowpress
