#include "cli/batch/job_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <system_error>
#include <utility>

#include "cli/batch/worker_channels.h"
#include "cli/options.h"

namespace marrowpress {
namespace {

/// How long a process that was asked to end is waited for.
constexpr std::chrono::milliseconds kGrace{1500};

[[noreturn]] void throwError(int error, const char* what) {
    throw std::system_error(error, std::generic_category(), what);
}

void check(int error) {
    if (error != 0) {
        throwError(error, "cannot start a job");
    }
}

/// What the system is told of a new process's descriptors.
class FileActions {
public:
    FileActions() { check(posix_spawn_file_actions_init(&actions_)); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

    void give(int descriptor, int as) {
        check(posix_spawn_file_actions_adddup2(&actions_, descriptor, as));
    }
    void giveNothing(int as) {
        check(posix_spawn_file_actions_addopen(&actions_, as, "/dev/null", O_WRONLY, 0));
    }
    const posix_spawn_file_actions_t* get() const noexcept { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// A process that handles signals as if its parent had not touched them, and that a terminal's
/// interruption passes by: the batch decides what becomes of it.
class SpawnAttributes {
public:
    SpawnAttributes() {
        check(posix_spawnattr_init(&attributes_));
        sigset_t none;
        sigemptyset(&none);
        check(posix_spawnattr_setsigmask(&attributes_, &none));
        check(posix_spawnattr_setpgroup(&attributes_, 0));
        check(
            posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP));
    }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t* get() const noexcept { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

pid_t spawn(const std::vector<std::string>& arguments, const FileActions& actions) {
    std::vector<char*> argv{const_cast<char*>(kProgramName)};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    const SpawnAttributes attributes;
    pid_t pid = -1;
    check(
        posix_spawn(&pid, "/proc/self/exe", actions.get(), attributes.get(), argv.data(), environ));
    return pid;
}

double cpuTimeOf(const timeval& time) {
    constexpr double kMicrosecond = 1e-6;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * kMicrosecond;
}

std::string lastLine(const std::string& lines) {
    const std::size_t end = lines.find_last_of('\n');
    if (end == std::string::npos) {
        return {};
    }
    const std::size_t begin = end == 0 ? std::string::npos : lines.find_last_of('\n', end - 1);
    return begin == std::string::npos ? lines.substr(0, end)
                                      : lines.substr(begin + 1, end - begin - 1);
}

}  // namespace

JobProcess::JobProcess(const JobCall& call)
    : input_("job"), phases_("phases"), result_("result"), errors_("errors"), start_(Clock::now()) {
    input_.fill(call.input);
    FileActions actions;
    // First those that are to get the numbers of the others.
    actions.give(input_.descriptor(), STDIN_FILENO);
    actions.giveNothing(STDOUT_FILENO);
    actions.give(errors_.descriptor(), STDERR_FILENO);
    actions.give(phases_.descriptor(), kPhaseDescriptor);
    actions.give(result_.descriptor(), kResultDescriptor);
    pid_ = spawn(call.arguments, actions);
    if (call.nice != 0) {
        errno = 0;
        setpriority(PRIO_PROCESS, static_cast<id_t>(pid_),
                    getpriority(PRIO_PROCESS, 0) + call.nice);
    }
    if (call.longest) {
        deadline_ = start_ + *call.longest;
    }
}

JobProcess::~JobProcess() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
}

std::optional<JobEnd> JobProcess::findEnd() {
    constexpr int kSignalBase = 128;
    constexpr std::uint64_t kKilobyte = 1024;
    int status = 0;
    rusage usage{};
    if (pid_ <= 0 || wait4(pid_, &status, WNOHANG, &usage) != pid_) {
        return std::nullopt;
    }
    pid_ = -1;
    JobEnd end;
    if (WIFSIGNALED(status)) {
        end.signal = WTERMSIG(status);
        end.exit = kSignalBase + *end.signal;
    } else {
        end.exit = WEXITSTATUS(status);
        end.result = result_.text();
    }
    end.isOutOfTime = isOutOfTime_;
    end.isStopped = isStopped_;
    end.phase = lastLine(phases_.text());
    end.errors = errors_.text();
    end.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    end.cpuSeconds = cpuTimeOf(usage.ru_utime) + cpuTimeOf(usage.ru_stime);
    end.memory = static_cast<std::uint64_t>(usage.ru_maxrss) * kKilobyte;
    return end;
}

void JobProcess::ask(Clock::time_point now) {
    // What is stopped takes no signal but that one.
    kill(pid_, isAsked_ ? SIGKILL : SIGTERM);
    deadline_ = isAsked_ ? std::nullopt : std::optional(now + kGrace);
    isAsked_ = true;
}

void JobProcess::lookAtTime(Clock::time_point now) {
    if (pid_ > 0 && deadline_ && now >= *deadline_) {
        isOutOfTime_ |= !isStopped_;
        ask(now);
    }
}

void JobProcess::stop() {
    isStopped_ = true;
    if (pid_ > 0 && !isAsked_) {
        ask(Clock::now());
    }
}

std::uint64_t JobProcess::residentMemory() const {
    std::ifstream statistics("/proc/" + std::to_string(pid_) + "/statm");
    std::uint64_t total = 0;
    std::uint64_t resident = 0;
    statistics >> total >> resident;
    return statistics ? resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) : 0;
}

}  // namespace marrowpress
