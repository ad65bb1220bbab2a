#include "library/child_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace marrowpress {
namespace {

void require(int error) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category());
    }
}

/// What the child has open.
class FileActions {
public:
    explicit FileActions(int socket) {
        require(posix_spawn_file_actions_init(&actions_));
        const int error = fill(socket);
        if (error != 0) {
            posix_spawn_file_actions_destroy(&actions_);
        }
        require(error);
    }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

    const posix_spawn_file_actions_t* get() const noexcept { return &actions_; }

private:
    int fill(int socket) {
        for (const int error :
             {posix_spawn_file_actions_adddup2(&actions_, socket, STDIN_FILENO),
              posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0),
              posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0),
              posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1)}) {
            if (error != 0) {
                return error;
            }
        }
        return 0;
    }

    posix_spawn_file_actions_t actions_{};
};

/// No signal is held back or ignored in the child, whatever the caller does.
class Attributes {
public:
    Attributes() {
        require(posix_spawnattr_init(&attributes_));
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t* get() const noexcept { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, int socket) {
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    const FileActions actions(socket);
    const Attributes attributes;
    require(posix_spawn(&id_, arguments.front(), actions.get(), attributes.get(), arguments.data(),
                        environ));
}

ChildProcess::~ChildProcess() {
    if (id_ > 0) {
        send(SIGKILL);
        wait();
    }
}

void ChildProcess::send(int signal) const {
    kill(id_, signal);
}

int ChildProcess::wait() {
    int status = 0;
    pid_t waited = 0;
    do {
        waited = waitpid(id_, &status, 0);
    } while (waited < 0 && errno == EINTR);
    id_ = -1;
    return waited > 0 && WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

}  // namespace marrowpress
