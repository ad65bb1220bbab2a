#include "cli/map_run.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "cli/public_ids.h"
#include "findings/shown_path.h"
#include "findings/wording.h"
#include "host/client_session.h"
#include "marrowpress/messages.h"
#include "marrowpress/publish_status.h"

namespace marrowpress {
namespace {

std::string withStatus(PublishStatus status) {
    return " (status " + std::to_string(status) + ")";
}

}  // namespace

RunOutcome runRequest(const RunSetting& setting, RunDisplay& display) {
    RunOutcome outcome;
    StandInHostOptions host;
    host.resolvePublicId = makePublicIdResolver(setting.catalogs);
    host.onProgress = [&](std::string_view line) { display.showProgressLine(line); };
    host.onConsole = [&](std::optional<MessageId> message, std::string_view line) {
        outcome.hasUnwrittenDocument |= message == MessageId::kCannotWrite;
        if (!setting.collector) {
            display.showReportLine(line);
        }
    };
    if (setting.collector) {
        host.onObservation = [&](const Observation& observation) {
            if (setting.watch) {
                setting.watch(observation);
            }
            setting.collector->observe(observation);
            display.observe(observation);
        };
    }
    ClientSession session(std::move(host));
    const std::optional<TypedValues> answer = session.send(setting.request);
    display.end();
    if (!answer) {
        return outcome;
    }
    outcome.status = statusOf(*answer);
    outcome.components = componentsOf(*answer);
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

void addFailure(const RunOutcome& outcome, const std::string& map, FindingCollector& collector) {
    const std::optional<std::string> fault = findStatusFault(outcome);
    const std::vector<Finding>& findings = collector.list().findings();
    const bool isTold = std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::kError && !finding.isArtefact;
    });
    if (!fault || isTold) {
        return;
    }
    const std::string& reason = collector.facts().failure();
    Finding finding;
    finding.id = "MP106";
    finding.severity = Severity::kError;
    finding.place.file = map;
    finding.target = map;
    finding.text = cannotReadText(shownPath(map, collector.context().currentFolder),
                                  reason.empty() ? *fault : reason);
    finding.hint = runFailsHint();
    collector.add(std::move(finding));
}

}  // namespace marrowpress
