#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/publish_paths.h"
#include "findings/finding.h"
#include "marrowpress/observer.h"
#include "results/file_stamp.h"
#include "results/run_result.h"
#include "runs/dependency_list.h"

namespace marrowpress {

class FindingsReport;
class ResultRecorder;

/// Sources were changed while a run read them, and it is to be made again. Nothing was told of it.
class SourcesChanged : public std::runtime_error {
public:
    SourcesChanged() : std::runtime_error("sources were changed while they were read") {}
};

/// Who wants to know what a run came to, and how it is made.
struct RunRecording {
    std::string id;
    /// Gets the name of each phase as it begins; may be empty.
    std::function<void(std::string_view)> onPhase;
    /// Gets the result, unless the run was not even started.
    std::function<void(const RunResult&)> take;
    /// Asked before the run is made, when it may be; gives the exit code where an earlier result
    /// serves, and the run is not made. May be empty.
    std::function<std::optional<ExitCode>(const FindingsReport&)> findAnswer;
    /// A composite is made in a private folder beside its place, so that runs into one folder do
    /// not meet.
    ///
    /// @throws NeedsItsPlace out of the run when that makes a difference.
    bool isMadeAside = false;
    /// There will be another try if this one's sources are changed meanwhile.
    bool isMadeAgain = false;

    std::optional<ExitCode> answer(const FindingsReport& report) const {
        return findAnswer ? findAnswer(report) : std::nullopt;
    }

    void notePhase(const Observation& observation) const {
        if (onPhase && observation.kind == ObservationKind::kPhase) {
            onPhase(observation.target);
        }
    }

    /// To be called between the run and all that is told of it.
    ///
    /// @throws SourcesChanged when it is to be made again.
    void demandSameSources(const ResultRecorder& recorder) const;
};

/// The request and all else by which a result counts for a run: `options` as a JSON object. Two
/// runs for which both are the same, over the same files, have one result.
struct RunIdentity {
    std::string request;
    std::string options;
};

/// @param command     "publish", "check", "keys".
/// @param ownFilters  How many filters, from the last, are for a run of their own each.
/// @param wish        What else the command was asked for; empty for nothing.
RunIdentity identityOf(const std::string& command, const PublishOptions& options,
                       const PublishPaths& paths, std::size_t ownFilters = 0,
                       const std::string& wish = {});

/// Of the program and the libraries that have a part in its results, as a JSON object.
std::string versionsText();

/// Gathers what there is to tell of one run.
class ResultRecorder {
public:
    ResultRecorder(std::string id, RunIdentity identity, const PublishPaths& paths);

    /// Takes references too.
    void observe(const Observation& observation);
    void addCatalog(const std::string& path);

    /// The files that the run depends on, once `finishRun` was called.
    const DependencyList& dependencies() const noexcept { return dependencies_; }
    void finishRun(std::optional<std::int32_t> status);

    /// What decides on findings as it stands in these places, and is not read.
    void lookAt(const std::set<std::string>& places);

    /// Whether one of these files is not the one that the run has met, or was changed since it
    /// began. What the run has made of it may be of neither state.
    bool areSourcesChanged() const;

    /// @param outputs  Those that were written, absolute.
    RunResult finish(const std::vector<Finding>& findings, const FindingSummary& summary,
                     const std::vector<std::string>& outputs);

private:
    using Clock = std::chrono::steady_clock;

    void meet(const std::string& path);
    bool isAnother(const std::string& path) const;

    RunResult result_;
    DependencyList dependencies_;
    std::vector<std::filesystem::path> filters_;
    /// How each file was found when the run looked for it first; empty for what was none. That
    /// tells of a folder or a link that became another one, whose files have old times.
    std::unordered_map<std::string, std::optional<FileStamp>> met_;
    std::string phase_;
    Clock::time_point start_ = Clock::now();
};

}  // namespace marrowpress
