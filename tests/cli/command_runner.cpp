#include "tests/cli/command_runner.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <limits>
#include <stdexcept>

namespace marrowpress {
namespace {

/// Puts `path` in the place of a standard stream; ends the process when that fails.
void redirect(int stream, const std::string& path, int flags) {
    const int descriptor = open(path.c_str(), flags, 0600);
    if (descriptor < 0 || dup2(descriptor, stream) < 0) {
        _exit(126);
    }
    close(descriptor);
}

void setEnvironment(const CommandSetting& setting) {
    if (setting.hasNoEnvironment) {
        clearenv();
        return;
    }
    // What a test finds is not to depend on where it runs.
    for (const char* const name : {"XML_CATALOG_FILES", "GITHUB_ACTIONS", "NO_COLOR", "LANGUAGE"}) {
        unsetenv(name);
    }
    if (setting.catalogs) {
        setenv("XML_CATALOG_FILES", setting.catalogs->c_str(), 1);
    }
    setenv("LC_ALL", setting.locale.c_str(), 1);
    for (const auto& [name, value] : setting.variables) {
        setenv(name.c_str(), value.c_str(), 1);
    }
}

void dropRights() {
    constexpr uid_t kNobody = 65534;
    if (getuid() == 0 && setuid(kNobody) != 0) {
        _exit(126);
    }
}

void limit(__rlimit_resource resource, unsigned most) {
    const rlimit limit{most, most};
    if (setrlimit(resource, &limit) != 0) {
        _exit(126);
    }
}

/// As a shell starts a command, whatever this process ignores.
void resetSignals(const std::vector<int>& ignored) {
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        std::signal(signal, SIG_DFL);
    }
    for (const int signal : ignored) {
        std::signal(signal, SIG_IGN);
    }
}

void setStandardInput(const TemporaryFolder& folder, const TemporaryFolder& streams,
                      const CommandSetting& setting) {
    if (!setting.inputFile) {
        redirect(STDIN_FILENO, streams.file("in"), O_RDONLY);
    } else if (setting.inputFile->empty()) {
        close(STDIN_FILENO);
    } else {
        redirect(STDIN_FILENO, folder.file(*setting.inputFile), O_RDONLY);
    }
}

[[noreturn]] void becomeCommand(const TemporaryFolder& folder, const TemporaryFolder& streams,
                                std::vector<std::string> arguments, const CommandSetting& setting) {
    constexpr int kWrite = O_WRONLY | O_CREAT | O_TRUNC;
    if (!setting.error) {
        redirect(STDERR_FILENO, streams.file("err"), kWrite);
    } else if (setting.error->empty()) {
        close(STDERR_FILENO);
    } else {
        redirect(STDERR_FILENO, *setting.error, O_WRONLY);
    }
    setStandardInput(folder, streams, setting);
    if (!setting.output) {
        redirect(STDOUT_FILENO, streams.file("out"), kWrite);
    } else if (setting.output->empty()) {
        close(STDOUT_FILENO);
    } else {
        redirect(STDOUT_FILENO, *setting.output, O_WRONLY);
    }
    setEnvironment(setting);
    resetSignals(setting.ignoredSignals);
    if (setting.largestFile) {
        limit(RLIMIT_FSIZE, *setting.largestFile);
        // Where coverage is measured, a file of counts that is cut would spoil those of all others.
        setenv("GCOV_PREFIX", streams.path().c_str(), 1);
    }
    if (setting.stack) {
        limit(RLIMIT_STACK, *setting.stack);
    }
    if (chdir((folder.path() / setting.currentFolder).c_str()) != 0) {
        _exit(126);
    }
    if (setting.isWithoutRights) {
        dropRights();
    }
    if (setting.mostHandles) {
        // What whoever started the tests left open would count.
        close_range(STDERR_FILENO + 1, std::numeric_limits<unsigned>::max(), 0);
        limit(RLIMIT_NOFILE, *setting.mostHandles);
    }

    arguments.insert(arguments.begin(), MARROWPRESS_COMMAND);
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    execv(MARROWPRESS_COMMAND, pointers.data());
    _exit(127);
}

int exitCodeOf(pid_t child) {
    int status = 0;
    if (waitpid(child, &status, 0) != child) {
        throw std::runtime_error("cannot wait");
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

}  // namespace

RunningCommand::RunningCommand(const TemporaryFolder& folder,
                               const std::vector<std::string>& arguments,
                               const CommandSetting& setting)
    : setting_(setting), child_(-1) {
    streams_.write("in", setting.input);
    child_ = fork();
    if (child_ < 0) {
        throw std::runtime_error("cannot fork");
    }
    if (child_ == 0) {
        becomeCommand(folder, streams_, arguments, setting);
    }
}

RunningCommand::~RunningCommand() {
    if (child_ > 0) {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
}

void RunningCommand::send(int signal) const {
    kill(child_, signal);
}

CommandResult RunningCommand::wait() {
    const int code = exitCodeOf(child_);
    child_ = -1;
    return {code, setting_.output ? "" : streams_.read("out"),
            setting_.error ? "" : streams_.read("err")};
}

CommandResult runCommand(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                         const CommandSetting& setting) {
    return RunningCommand(folder, arguments, setting).wait();
}

}  // namespace marrowpress
