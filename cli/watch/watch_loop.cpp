#include "cli/watch/watch_loop.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/algorithm/string/join.hpp>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <memory>
#include <ostream>
#include <system_error>

#include "cli/waited_signals.h"
#include "cli/watch/folder_watch.h"
#include "findings/identity.h"
#include "findings/shown_path.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

using Clock = std::chrono::steady_clock;

/// How long nothing may change before it is looked at what has changed.
constexpr std::chrono::milliseconds kQuiet{100};

constexpr std::chrono::milliseconds kPollInterval{1000};

/// How often a run is made at once because its sources were changed while it read them. After that
/// the next change is waited for: a clock that runs wrong must not keep the machine busy.
constexpr unsigned kMostRunsAtOnce = 3;

/// The signals that end the watch, and the one of processes that have ended, as a descriptor.
class SignalDescriptor {
public:
    SignalDescriptor() {
        const sigset_t signals = waitedSignals();
        descriptor_ = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
        if (descriptor_ < 0) {
            throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
        }
    }
    SignalDescriptor(const SignalDescriptor&) = delete;
    SignalDescriptor& operator=(const SignalDescriptor&) = delete;
    ~SignalDescriptor() { close(descriptor_); }

    int descriptor() const noexcept { return descriptor_; }

    /// One that has come and is to end the watch; 0 for none.
    int takeEnd() const {
        signalfd_siginfo information{};
        int end = 0;
        while (read(descriptor_, &information, sizeof information) > 0) {
            if (information.ssi_signo != SIGCHLD) {
                end = static_cast<int>(information.ssi_signo);
            }
        }
        return end;
    }

private:
    BlockedSignals blocked_;
    int descriptor_ = -1;
};

/// One watch, from the first run to the signal.
class Watch {
public:
    Watch(WatchedWork& work, const WatchSetting& setting, const Streams& streams)
        : work_(work), setting_(setting), streams_(streams) {}

    WatchEnd run();

private:
    void start();
    bool enterFolder() const;
    void startCommand();
    void takeRunEnd(const TaskEnd& end);
    void takeOutcome(WatchOutcome outcome);
    void follow();
    void wait();
    void lookAtFiles();
    void tell(const std::string& sentence) const;
    void tellChanges() const;
    bool isPolling() const { return setting_.polls || isWithoutEvents_; }

    WatchedWork& work_;
    const WatchSetting& setting_;
    const Streams& streams_;
    const std::string folder_ = fs::current_path().string();  ///< In which all is run.
    SignalDescriptor signals_;
    FolderWatch folders_;
    bool isWithoutEvents_ = false;
    std::unique_ptr<TaskProcess> run_;
    std::unique_ptr<TaskProcess> command_;
    FollowedFiles files_;
    std::optional<std::vector<std::string>> findings_;  ///< Empty before the first outcome.
    std::vector<std::string> changes_;                  ///< Not yet run with.
    std::optional<Clock::time_point> lookAt_;
    unsigned runsAtOnce_ = 0;
    std::optional<WatchEnd> end_;
};

WatchEnd Watch::run() {
    start();
    while (!end_) {
        wait();
        if (const int signal = signals_.takeEnd(); signal != 0) {
            end_ = WatchEnd{signal, ExitCode::kSuccess};
            break;
        }
        if (run_) {
            if (const std::optional<TaskEnd> end = run_->findEnd()) {
                run_.reset();
                takeRunEnd(*end);
            }
        }
        if (command_) {
            if (const std::optional<TaskEnd> end = command_->findEnd()) {
                command_.reset();
                if (end->exit != 0) {
                    tell("the command ended with " + std::to_string(end->exit));
                }
            }
        }
        if (!end_ && !isPolling() && folders_.takeEvents()) {
            runsAtOnce_ = 0;
            lookAt_ = Clock::now() + kQuiet;
        }
        if (!end_ && lookAt_ && Clock::now() >= *lookAt_) {
            lookAtFiles();
        }
    }
    for (const auto& process : {&run_, &command_}) {
        if (*process) {
            (*process)->stop();
        }
    }
    return *end_;
}

/// Until something has happened, or it is time to look at the files.
void Watch::wait() {
    int timeout = -1;
    if (lookAt_) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(*lookAt_ - Clock::now()).count();
        timeout = static_cast<int>(std::max<std::int64_t>(left, 0));
    }
    std::array<pollfd, 2> sources{{{signals_.descriptor(), POLLIN, 0},
                                   {isPolling() ? -1 : folders_.descriptor(), POLLIN, 0}}};
    poll(sources.data(), sources.size(), timeout);
}

void Watch::start() {
    for (const auto& process : {&run_, &command_}) {
        if (*process) {
            (*process)->stop();
            process->reset();
        }
    }
    changes_.clear();
    if (!enterFolder()) {
        return;
    }
    run_ = std::make_unique<TaskProcess>(
        [this](int channel) { return static_cast<int>(work_.run(channel)); });
}

/// The folder may have come back as another one, and the one that it was may have another name now:
/// paths are not to lead there. False while there is none.
bool Watch::enterFolder() const {
    std::error_code error;
    fs::current_path(folder_, error);
    if (error != std::errc::no_such_file_or_directory && error != std::errc::not_a_directory) {
        return true;
    }
    tell("there is no folder " + folder_);
    return false;
}

void Watch::startCommand() {
    if (!setting_.command.empty()) {
        command_ = std::make_unique<TaskProcess>(programTask(setting_.command));
    }
}

void Watch::takeRunEnd(const TaskEnd& end) {
    const bool isFirst = !findings_;
    std::optional<WatchOutcome> outcome = work_.outcomeOf(end);
    if (end.signal) {
        tell("the run was ended by signal " + std::to_string(*end.signal));
    }
    if (!outcome && isFirst) {
        end_ = WatchEnd{0, static_cast<ExitCode>(end.exit)};
        return;
    }
    if (outcome) {
        takeOutcome(std::move(*outcome));
        // What changed before the folders were watched nobody has told.
        lookAt_ = Clock::now() + kQuiet;
    }
    if (isFirst) {
        tell("waiting for changes in " + std::to_string(files_.size()) +
             (files_.size() == 1 ? " file" : " files") + "; Ctrl-C ends this");
    }
    const auto code = static_cast<ExitCode>(end.exit);
    if (code == ExitCode::kSuccess || code == ExitCode::kFindings) {
        startCommand();
    }
}

void Watch::takeOutcome(WatchOutcome outcome) {
    if (findings_) {
        const std::string text = findingsChangeText(*findings_, outcome.findings);
        tell(text.empty() ? "findings as before" : text);
    }
    files_ = std::move(outcome.files);
    findings_ = std::move(outcome.findings);
    follow();
}

/// Watches the folders as they are now.
void Watch::follow() {
    if (!isPolling() && !folders_.follow(watchedNames(files_.paths()))) {
        isWithoutEvents_ = true;
        tell(
            "the system allows no more inotify watches (fs.inotify.max_user_watches), so the "
            "files are looked at every second");
        lookAt_ = Clock::now();
    }
}

void Watch::lookAtFiles() {
    lookAt_.reset();
    if (!findings_) {
        return;
    }
    // Folders may have come or gone; what happens in them from here on is heard.
    follow();
    const std::vector<std::string> changes = files_.takeChanges();
    changes_.insert(changes_.end(), changes.begin(), changes.end());
    // Without events nobody tells whether more is to come.
    if (isPolling()) {
        lookAt_ = Clock::now() + (changes.empty() ? kPollInterval : kQuiet);
    }
    if (changes_.empty() || (isPolling() && !changes.empty())) {
        return;
    }
    if (++runsAtOnce_ > kMostRunsAtOnce && !isPolling()) {
        changes_.clear();
        return;
    }
    tellChanges();
    start();
}

void Watch::tellChanges() const {
    constexpr std::size_t kMostNamed = 3;
    std::vector<std::string> names = changes_;
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    const std::size_t others = names.size() > kMostNamed ? names.size() - kMostNamed : 0;
    names.resize(names.size() - others);
    for (std::string& name : names) {
        name = shownPath(name, folder_);
    }
    const std::string list = boost::algorithm::join(names, ", ");
    tell("changed: " + list + (others == 0 ? "" : " and " + std::to_string(others) + " more"));
}

void Watch::tell(const std::string& sentence) const {
    if (!setting_.isQuiet) {
        streams_.err << "marrowpress watch: " << sentence << ".\n" << std::flush;
    }
}

}  // namespace

void WatchOutcome::add(const RunResult& result, const std::string& folder) {
    files.add(result);
    for (const Finding& finding : result.findings) {
        if (finding.isArtefact) {
            continue;
        }
        findings.push_back(identityOf(finding, finding.place, folder));
        for (const FindingPlace& place : finding.places) {
            findings.push_back(identityOf(finding, place, folder));
        }
    }
}

WatchEnd watch(WatchedWork& work, const WatchSetting& setting, const Streams& streams) {
    return Watch(work, setting, streams).run();
}

std::string findingsChangeText(std::vector<std::string> earlier, std::vector<std::string> now) {
    std::sort(earlier.begin(), earlier.end());
    std::sort(now.begin(), now.end());
    std::vector<std::string> fixed;
    std::vector<std::string> added;
    std::set_difference(earlier.begin(), earlier.end(), now.begin(), now.end(),
                        std::back_inserter(fixed));
    std::set_difference(now.begin(), now.end(), earlier.begin(), earlier.end(),
                        std::back_inserter(added));
    if (fixed.empty() && added.empty()) {
        return {};
    }
    return std::to_string(fixed.size()) + " fixed, " + std::to_string(added.size()) + " new";
}

}  // namespace marrowpress
