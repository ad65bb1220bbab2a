#include "tests/cli/command_runner.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
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
    if (setting.catalogs) {
        setenv("XML_CATALOG_FILES", setting.catalogs->c_str(), 1);
    } else {
        unsetenv("XML_CATALOG_FILES");
    }
    if (setting.locale) {
        setenv("LC_ALL", setting.locale->c_str(), 1);
    }
}

void limitFileSize(unsigned bytes) {
    const rlimit limit{bytes, bytes};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) {
        _exit(126);
    }
}

/// As a shell starts a command, whatever this process ignores.
void resetSignals() {
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        std::signal(signal, SIG_DFL);
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
    redirect(STDERR_FILENO, streams.file("err"), kWrite);
    setStandardInput(folder, streams, setting);
    if (!setting.output) {
        redirect(STDOUT_FILENO, streams.file("out"), kWrite);
    } else if (setting.output->empty()) {
        close(STDOUT_FILENO);
    } else {
        redirect(STDOUT_FILENO, *setting.output, O_WRONLY);
    }
    setEnvironment(setting);
    resetSignals();
    if (setting.largestFile) {
        limitFileSize(*setting.largestFile);
    }
    if (chdir(folder.path().c_str()) != 0) {
        _exit(126);
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

CommandResult runCommand(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                         const CommandSetting& setting) {
    const TemporaryFolder streams;
    streams.write("in", setting.input);
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("cannot fork");
    }
    if (child == 0) {
        becomeCommand(folder, streams, arguments, setting);
    }
    const int code = exitCodeOf(child);
    return {code, setting.output ? "" : streams.read("out"), streams.read("err")};
}

}  // namespace marrowpress
