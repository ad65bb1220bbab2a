#include "runs/map_run.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "findings/catalogue.h"
#include "findings/shown_path.h"
#include "findings/wording.h"
#include "host/client_session.h"
#include "marrowpress/messages.h"
#include "marrowpress/publish_status.h"
#include "runs/public_ids.h"
#include "runs/unwritten_file.h"

namespace marrowpress {
namespace {

/// As the observer names it.
constexpr std::string_view kOutputPhase = "output";

std::string withStatus(PublishStatus status) {
    return " (status " + std::to_string(status) + ")";
}

/// How the reason begins where the system refused something.
constexpr std::string_view kFileSystemError = "filesystem error: ";

/// "rename: Is a directory", without the paths behind it: they may be those of files that are
/// there for the length of a run only.
std::string systemReason(const std::string& reason) {
    const std::size_t begin = reason.starts_with(kFileSystemError) ? kFileSystemError.size() : 0;
    return reason.substr(begin, reason.find(" [") - begin);
}

/// Whether a file that cannot be read or written has been told.
bool isFailureTold(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
        const bool isOfFile =
            finding.id == "MP106" || finding.id == "MP107" || finding.id == "MP212";
        return isOfFile && !finding.isArtefact;
    });
}

StandInHostOptions::PublicIdResolver resolverOf(const RunSetting& setting) {
    auto catalogs = makePublicIdResolver(setting.catalogs, setting.onCatalog);
    if (!setting.resolvePublicId) {
        return catalogs;
    }
    return [first = setting.resolvePublicId, catalogs](std::string_view publicId) {
        std::optional<std::string> path = first(publicId);
        return path ? path : catalogs(publicId);
    };
}

void takeAnswer(const std::optional<TypedValues>& answer, RunOutcome& outcome) {
    if (answer) {
        outcome.status = statusOf(*answer);
        outcome.components = componentsOf(*answer);
        outcome.answer = *answer;
    }
}

}  // namespace

RunOutcome runRequest(const RunSetting& setting, const RunSinks& sinks) {
    RunOutcome outcome;
    StandInHostOptions host;
    host.openDocuments = setting.openDocuments;
    host.resolvePublicId = resolverOf(setting);
    host.onProgress = [&](std::string_view line) {
        outcome.hasBegun = true;
        if (sinks.onProgress) {
            sinks.onProgress(line);
        }
    };
    host.onConsole = [&](std::optional<MessageId> message, std::string_view line) {
        outcome.hasBegun = true;
        outcome.hasUnwrittenDocument |= message == MessageId::kCannotWrite;
        if (!setting.collector && sinks.onReport) {
            sinks.onReport(line);
        }
    };
    bool isOutputNext = false;
    if (setting.clock) {
        host.onDocument = [&](std::string_view path) { setting.clock->visit(path); };
    }
    if (setting.collector || setting.watch || setting.clock) {
        host.onObservation = [&](const Observation& observation) {
            if (setting.clock) {
                setting.clock->observe(observation);
            }
            isOutputNext |=
                observation.kind == ObservationKind::kPhase && observation.target == kOutputPhase;
            if (setting.watch) {
                setting.watch(observation);
            }
            if (setting.collector) {
                setting.collector->observe(observation);
            }
            if (sinks.onObservation) {
                sinks.onObservation(observation);
            }
        };
    }
    host.onReference = setting.watchReferences;
    const auto hasAllThatIsWanted = [&] { return setting.endsBeforeOutput && isOutputNext; };
    host.isInterrupted = [&] {
        return (sinks.isInterrupted && sinks.isInterrupted()) || hasAllThatIsWanted();
    };
    ClientSession session(std::move(host));
    try {
        takeAnswer(session.send(setting.request), outcome);
    } catch (const RunInterrupted&) {
        if (!hasAllThatIsWanted()) {
            throw;
        }
        outcome.status = kPublished;
    }
    if (setting.clock) {
        setting.clock->endRuns();
    }
    return outcome;
}

std::optional<std::vector<std::string>> componentsOf(const TypedValues& answer) {
    constexpr std::size_t kIndex = 4;
    if (answer.size() <= kIndex) {
        return std::nullopt;
    }
    const auto* const listed = std::get_if<std::vector<std::string>>(&answer[kIndex].value);
    if (!listed) {
        return std::nullopt;
    }
    std::vector<std::string> components;
    // A source that the map refers to twice is one component, which the answer names twice.
    std::unordered_set<std::string_view> seen;
    for (const std::string& path : *listed) {
        if (seen.insert(path).second) {
            components.push_back(path);
        }
    }
    return components;
}

std::optional<std::string> findStatusFault(const RunOutcome& outcome) {
    if (outcome.isFolderTaken) {
        return kFolderIsTaken;
    }
    if (!outcome.status) {
        return "the client gave no answer";
    }
    switch (*outcome.status) {
        case kPublished:
            return std::nullopt;
        case kRunFailed:
            return "the run failed" + withStatus(kRunFailed);
        case kRequestRefused:
            return "the request was refused, or an old output could not be removed" +
                   withStatus(kRequestRefused);
        default:
            return "the run ended with the unknown status " + std::to_string(*outcome.status);
    }
}

void addFailure(const RunOutcome& outcome, const std::string& map, const std::string& output,
                FindingCollector& collector) {
    const std::optional<std::string> fault = findStatusFault(outcome);
    const std::string& reason = collector.facts().failure();
    if (!fault || (reason.empty() && isFailureTold(collector.list().findings()))) {
        return;
    }
    if (outcome.isFolderTaken || outcome.status == kRequestRefused ||
        reason.starts_with(kFileSystemError)) {
        addUnwritten(output, reason.empty() ? *fault : systemReason(reason), collector);
        return;
    }
    Finding finding;
    finding.id = "MP106";
    finding.severity = *defaultSeverity(finding.id);
    finding.place.file = map;
    finding.target = map;
    finding.text = cannotReadText(shownPath(map, collector.context().currentFolder),
                                  reason.empty() ? *fault : reason);
    finding.hint = runFailsHint();
    finding.profiles = collector.context().profiles;
    collector.add(std::move(finding));
}

void addUnwritten(const std::string& path, const std::string& reason, FindingCollector& collector) {
    Finding finding = unwrittenFinding(path, reason, collector.context().currentFolder);
    finding.profiles = collector.context().profiles;
    collector.add(std::move(finding));
}

}  // namespace marrowpress
