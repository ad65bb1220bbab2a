#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/memory_file.h"

namespace marrowpress {

/// How the process of a job ended, and what it left behind.
struct JobEnd {
    int exit = 0;               ///< 128 + n after the signal n.
    std::optional<int> signal;  ///< That ended it.
    bool isOutOfTime = false;   ///< It was ended because it took too long.
    bool isStopped = false;     ///< It was ended because the batch was.
    std::string phase;          ///< The last that it told; may be empty.
    std::string result;         ///< What it told of itself; empty when it came to nothing.
    std::string errors;         ///< What it wrote to standard error.
    double seconds = 0;
    double cpuSeconds = 0;
    std::uint64_t memory = 0;  ///< Resident at most, in bytes.
};

/// What the process of a job is started with.
struct JobCall {
    std::vector<std::string> arguments;  ///< Behind the program's name.
    std::string input;                   ///< On standard input.
    int nice = 0;                        ///< Added to the batch's own.
    std::optional<std::chrono::seconds> longest;
};

/// The process of one job: this program again, in a process group of its own. The caller must have
/// blocked SIGCHLD, and asks for the end when that comes.
class JobProcess {
public:
    using Clock = std::chrono::steady_clock;

    /// @throws std::system_error when it cannot be started.
    explicit JobProcess(const JobCall& call);
    JobProcess(const JobProcess&) = delete;
    JobProcess& operator=(const JobProcess&) = delete;
    /// Kills it if it has not ended.
    ~JobProcess();

    /// How it ended; empty while it runs.
    std::optional<JobEnd> findEnd();

    /// Ends it when it has run for too long, and kills it when it does not react.
    void lookAtTime(Clock::time_point now);

    /// When `lookAtTime` has something to do; empty for never.
    std::optional<Clock::time_point> deadline() const noexcept { return deadline_; }

    /// Asks it to end because the batch ends.
    void stop();

    /// Resident just now, in bytes.
    std::uint64_t residentMemory() const;

private:
    void ask(Clock::time_point now);

    MemoryFile input_;
    MemoryFile phases_;
    MemoryFile result_;
    MemoryFile errors_;
    pid_t pid_ = -1;
    Clock::time_point start_;
    std::optional<Clock::time_point> deadline_;
    bool isAsked_ = false;
    bool isOutOfTime_ = false;
    bool isStopped_ = false;
};

}  // namespace marrowpress
