#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/memory_file.h"

namespace marrowpress {

/// How a process ended that was started for one task.
struct TaskEnd {
    std::int64_t begin = 0;     ///< `earliestStampFromNow` before it was started.
    int exit = 0;               ///< 128 + n after the signal n.
    std::optional<int> signal;  ///< That ended it.
    std::string told;           ///< What it has left in its channel.
};

/// A process that does one task, in a process group of its own, so that a terminal's interruption
/// passes it by. It ends with its parent, by SIGTERM. The caller has one thread, and must have
/// blocked SIGCHLD, and asks for the end when that comes.
class TaskProcess {
public:
    using Clock = std::chrono::steady_clock;

    /// Runs `task` in a copy of this process; it gets a descriptor to write to, and gives the exit
    /// code.
    ///
    /// @throws std::system_error when no process can be made.
    explicit TaskProcess(const std::function<int(int channel)>& task);

    TaskProcess(const TaskProcess&) = delete;
    TaskProcess& operator=(const TaskProcess&) = delete;
    /// Kills it if it has not ended.
    ~TaskProcess();

    /// How it ended; empty while it runs.
    std::optional<TaskEnd> findEnd();

    /// Asks it to end, waits until it has, and kills it and its group when that takes too long.
    void stop();

private:
    std::int64_t begin_;
    MemoryFile channel_;
    pid_t pid_ = -1;
};

/// The task of running a program, which is searched for as a shell does; 127 when there is none.
std::function<int(int)> programTask(const std::vector<std::string>& arguments);

}  // namespace marrowpress
