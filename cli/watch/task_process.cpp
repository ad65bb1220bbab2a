#include "cli/watch/task_process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <exception>
#include <iostream>
#include <system_error>

#include "cli/options.h"
#include "results/file_stamp.h"

namespace marrowpress {
namespace {

constexpr int kSignalExitBase = 128;

/// A batch gives its jobs two seconds.
constexpr std::chrono::milliseconds kEndGrace{2500};

void handleSignalsAsUsual() {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void runTask(const std::function<int(int)>& task, int channel, pid_t parent) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    handleSignalsAsUsual();
    if (getppid() != parent) {
        raise(SIGTERM);
    }
    int exit = 1;
    try {
        exit = task(channel);
    } catch (const std::exception& failure) {
        std::cerr << kProgramName << ": " << failure.what() << '\n';
    }
    std::cout.flush();
    std::cerr.flush();
    _exit(exit);
}

}  // namespace

TaskProcess::TaskProcess(const std::function<int(int)>& task)
    : begin_(earliestStampFromNow()), channel_("channel") {
    std::cout.flush();
    std::cerr.flush();
    const pid_t parent = getpid();
    pid_ = fork();
    if (pid_ < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot start a run");
    }
    if (pid_ == 0) {
        runTask(task, channel_.descriptor(), parent);
    }
    // Both do it, since neither knows who comes first.
    setpgid(pid_, pid_);
}

TaskProcess::~TaskProcess() {
    if (pid_ > 0) {
        kill(-pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
}

std::optional<TaskEnd> TaskProcess::findEnd() {
    int status = 0;
    if (pid_ <= 0 || waitpid(pid_, &status, WNOHANG) != pid_) {
        return std::nullopt;
    }
    pid_ = -1;
    TaskEnd end;
    end.begin = begin_;
    end.told = channel_.text();
    if (WIFSIGNALED(status)) {
        end.signal = WTERMSIG(status);
        end.exit = kSignalExitBase + *end.signal;
    } else {
        end.exit = WEXITSTATUS(status);
    }
    return end;
}

void TaskProcess::stop() {
    if (pid_ <= 0) {
        return;
    }
    kill(-pid_, SIGTERM);
    sigset_t childEnds;
    sigemptyset(&childEnds);
    sigaddset(&childEnds, SIGCHLD);
    const Clock::time_point deadline = Clock::now() + kEndGrace;
    for (Clock::time_point now = Clock::now(); now < deadline && !findEnd(); now = Clock::now()) {
        constexpr long kShortWait = 20'000'000;
        const timespec wait{0, kShortWait};
        sigtimedwait(&childEnds, nullptr, &wait);
    }
    if (pid_ > 0) {
        kill(-pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }
}

std::function<int(int)> programTask(const std::vector<std::string>& arguments) {
    return [arguments](int) {
        const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(nothing, STDIN_FILENO);
        // What this program ignores others count on.
        for (const int number : {SIGPIPE, SIGXFSZ}) {
            std::signal(number, SIG_DFL);
        }
        std::vector<char*> argv;
        argv.reserve(arguments.size() + 1);
        for (const std::string& argument : arguments) {
            argv.push_back(const_cast<char*>(argument.c_str()));
        }
        argv.push_back(nullptr);
        execvp(argv.front(), argv.data());
        constexpr int kNoProgram = 127;
        std::cerr << kProgramName << ": cannot run " << arguments.front() << ": "
                  << std::generic_category().message(errno) << '\n';
        return kNoProgram;
    };
}

}  // namespace marrowpress
