#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/exit_code.h"
#include "cli/streams.h"
#include "cli/watch/followed_files.h"
#include "cli/watch/task_process.h"

namespace marrowpress {

/// What a run has come to, for whoever waits to make the next one.
struct WatchOutcome {
    FollowedFiles files;
    std::vector<std::string> findings;  ///< Their identities, one for each place.

    /// @param folder  From which paths in findings count.
    void add(const RunResult& result, const std::string& folder);
};

/// What is made again whenever something changes on which it depends.
class WatchedWork {
public:
    WatchedWork() = default;
    WatchedWork(const WatchedWork&) = delete;
    WatchedWork& operator=(const WatchedWork&) = delete;
    virtual ~WatchedWork() = default;

    /// Makes it, in a process of its own. What is written to `channel` gets to `outcomeOf`.
    virtual ExitCode run(int channel) = 0;

    /// What the run has come to; empty when it tells nothing, as one that was not even begun.
    virtual std::optional<WatchOutcome> outcomeOf(const TaskEnd& end) = 0;
};

/// How something is watched.
struct WatchSetting {
    bool polls = false;                ///< Files are looked at once a second, for want of events.
    std::vector<std::string> command;  ///< Run after each run that has written something; or empty.
    bool isQuiet = false;              ///< Nothing is told but what the runs tell.
};

/// How a watch ended.
struct WatchEnd {
    int signal = 0;                      ///< 0 when the first run was not begun.
    ExitCode code = ExitCode::kSuccess;  ///< Then its own.
};

/// Runs the work at once, and again when the files change on which it depends, until a signal ends
/// it all, or when the first run does not even begin. What goes on is told in lines on the error
/// stream.
///
/// A run that is still on when files change is ended, since what it makes is old already.
WatchEnd watch(WatchedWork& work, const WatchSetting& setting, const Streams& streams);

/// The line about what became better and worse; empty when nothing did.
std::string findingsChangeText(std::vector<std::string> earlier, std::vector<std::string> now);

}  // namespace marrowpress
