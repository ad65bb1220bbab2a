#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace marrowpress {

/// How the built command is started; every member may be left as it is.
struct CommandSetting {
    std::string input;                     ///< What stands on standard input.
    std::optional<std::string> inputFile;  ///< What to read as standard input; "" closes it.
    std::optional<std::string> output;     ///< A file to take standard output; "" closes it.
    std::optional<std::string> catalogs;   ///< XML_CATALOG_FILES; not set without it.
    std::string locale = "C.UTF-8";        ///< LC_ALL.
    std::optional<std::string> error;      ///< A file to take standard error; "" closes it.
    std::map<std::string, std::string> variables;  ///< More of the environment.
    bool hasNoEnvironment = false;        ///< Nothing is set at all, but for LeakSanitizer.
    std::string currentFolder;            ///< Seen from the test's folder.
    bool isWithoutRights = false;         ///< As a user who may do nothing special.
    std::optional<unsigned> largestFile;  ///< Bytes that the command may write to one file.
    std::optional<unsigned> mostHandles;  ///< Files that it may have open, streams included.
    std::optional<unsigned> stack;        ///< Bytes of its stack.
    std::vector<int> ignoredSignals;      ///< By whoever starts it.
};

/// What the command left behind.
struct CommandResult {
    int code;         ///< The exit status; 1000 and the signal for a process that was killed.
    std::string out;  ///< Empty when standard output went elsewhere.
    std::string err;
};

/// The built command while it runs. What is still running at the end is killed.
class RunningCommand {
public:
    RunningCommand(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                   const CommandSetting& setting = {});
    RunningCommand(const RunningCommand&) = delete;
    RunningCommand& operator=(const RunningCommand&) = delete;
    ~RunningCommand();

    void send(int signal) const;
    pid_t process() const noexcept { return child_; }

    /// What it has written so far.
    std::string outSoFar() const { return textSoFar("out"); }
    std::string errSoFar() const { return textSoFar("err"); }

    /// To be called once.
    CommandResult wait();

private:
    std::string textSoFar(const char* stream) const {
        return streams_.exists(stream) ? streams_.read(stream) : std::string();
    }

    TemporaryFolder streams_;
    CommandSetting setting_;
    pid_t child_;
};

/// Runs the built command with `arguments`, in `folder` as its current directory.
CommandResult runCommand(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                         const CommandSetting& setting = {});

}  // namespace marrowpress
