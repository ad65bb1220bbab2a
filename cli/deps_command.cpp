#include "cli/deps_command.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <ostream>
#include <system_error>
#include <unordered_set>

#include "cli/dependency_formats.h"
#include "cli/make_rule.h"
#include "cli/publish_paths.h"
#include "cli/survey.h"
#include "findings/nearest.h"
#include "findings/shown_path.h"
#include "runs/dependency_json.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr const char* kName = "deps";

/// One call of the command, once the run is over.
class Answer {
public:
    Answer(const DepsOptions& options, const DependencyList& list)
        : options_(options), list_(list), folder_(fs::current_path().string()) {}

    /// Why there is no answer; empty when there is one.
    std::optional<std::string> fault() const;
    std::string text() const;

private:
    std::string reversePath() const;
    std::vector<const Dependency*> wantedFiles() const;
    std::vector<const DependencyEdge*> wantedEdges() const;
    std::string ruleTarget() const;

    const DepsOptions& options_;
    const DependencyList& list_;
    std::string folder_;
};

/// The path by which the list knows the file of --reverse.
std::string Answer::reversePath() const {
    const fs::path path = fs::absolute(*options_.reverse).lexically_normal();
    if (list_.find(path.string())) {
        return path.string();
    }
    const auto same =
        std::find_if(list_.files().begin(), list_.files().end(), [&path](const Dependency& file) {
            std::error_code ignored;
            return fs::equivalent(file.file, path, ignored);
        });
    return same == list_.files().end() ? path.string() : same->file;
}

std::optional<std::string> Answer::fault() const {
    std::error_code ignored;
    if (!options_.reverse || list_.find(reversePath()) || fs::exists(*options_.reverse, ignored)) {
        return std::nullopt;
    }
    std::vector<std::string> names;
    for (const Dependency& file : list_.files()) {
        names.push_back(shownPath(file.file, folder_));
    }
    const std::optional<std::string> nearest = nearestName(*options_.reverse, names);
    return "--reverse: there is no file `" + *options_.reverse + "`, and nobody looks for it" +
           (nearest ? "; did you mean `" + *nearest + "`?" : "");
}

std::vector<const Dependency*> Answer::wantedFiles() const {
    if (options_.reverse) {
        return list_.filesLeadingTo(reversePath());
    }
    std::vector<const Dependency*> files;
    for (const Dependency& file : list_.files()) {
        files.push_back(&file);
    }
    return files;
}

/// Those between the wanted files, and from them to that of --reverse.
std::vector<const DependencyEdge*> Answer::wantedEdges() const {
    std::unordered_set<std::string> ends;
    for (const Dependency* const file : wantedFiles()) {
        ends.insert(file->file);
    }
    const std::string reverse = options_.reverse ? reversePath() : std::string();
    std::vector<const DependencyEdge*> edges;
    for (const DependencyEdge& edge : list_.edges()) {
        const bool isWanted = !options_.reverse || (ends.contains(edge.from) &&
                                                    (edge.to == reverse || ends.contains(edge.to)));
        if (isWanted) {
            edges.push_back(&edge);
        }
    }
    return edges;
}

std::string Answer::ruleTarget() const {
    return options_.output.empty() ? fs::path(options_.map).stem().string() + ".dita"
                                   : options_.output;
}

std::string Answer::text() const {
    const bool isJson = options_.dependencyFormat == DependencyFormat::kJson;
    if (options_.dependencyFormat == DependencyFormat::kMake) {
        return makeRule(ruleTarget(), prerequisitesOf(list_, folder_));
    }
    if (options_.showsEdges) {
        return isJson ? edgeJson(wantedEdges()) : edgeTable(wantedEdges(), folder_);
    }
    return isJson ? dependencyJson(wantedFiles()) : dependencyTable(wantedFiles(), folder_);
}

ExitCode giveAnswer(const Answer& answer, const Streams& streams) {
    if (const std::optional<std::string> fault = answer.fault()) {
        streams.err << usageErrorText(kName, *fault);
        return ExitCode::kWrongUsage;
    }
    return writeResult(streams, answer.text()) ? ExitCode::kSuccess : ExitCode::kRunFailed;
}

}  // namespace

ExitCode runDeps(const DepsOptions& options, const Streams& streams) {
    const PublishPaths paths = resolvePublishPaths(options);
    DependencyList list(paths.map);
    auto run = static_cast<const RunOptions&>(options);
    run.output.clear();
    return runSurvey(
        {kName, run, [&](const Observation& observation) { list.observe(observation); },
         [&](const std::string& path) { list.addCatalog(path); },
         [&](const Streams& taker) {
             list.addProfiles(paths.filters);
             list.finish();
             return giveAnswer({options, list}, taker);
         }},
        streams);
}

}  // namespace marrowpress
