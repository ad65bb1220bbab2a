#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace marrowpress {

/// A child process with a socket for standard input, that has nothing else open of this one: its
/// output goes nowhere. It is waited for at the end.
class ChildProcess {
public:
    /// @param socket  The child's end; stays the caller's.
    /// @throws std::system_error when it cannot be started.
    ChildProcess(const std::vector<std::string>& command, int socket);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// Ends one that still runs by SIGKILL.
    ~ChildProcess();

    void send(int signal) const;

    /// Waits for the end. The signal that brought it; 0 for none, and where somebody else waited.
    int wait();

private:
    pid_t id_ = -1;
};

}  // namespace marrowpress
