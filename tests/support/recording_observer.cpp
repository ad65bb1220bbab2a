#include "tests/support/recording_observer.h"

#include <string_view>

namespace marrowpress {
namespace {

std::string text(const ObservedCopy::Place& place) {
    const std::string file = place.file.empty() ? "?" : place.file;
    return file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

/// `name` and `value`, with a blank in front; nothing for an empty value.
std::string field(std::string_view name, std::string_view value) {
    return value.empty() ? std::string() : std::string(" ").append(name).append("=").append(value);
}

bool hasCode(ObservationKind kind) {
    return kind == ObservationKind::kFault || kind == ObservationKind::kDocumentRead ||
           kind == ObservationKind::kKeyDefinition || kind == ObservationKind::kFileReference ||
           kind == ObservationKind::kFaultsDropped;
}

ObservedCopy::Place copied(const ObservedPlace& place) {
    return {place.file ? place.file : "", place.line, place.column};
}

}  // namespace

ObservedCopy::ObservedCopy(const Observation& observation)
    : kind(observation.kind),
      code(observation.code),
      flags(observation.flags),
      element(observation.element),
      target(observation.target),
      detail(observation.detail),
      reason(observation.reason),
      line(observation.line) {
    for (std::uint32_t index = 0; index < observation.stepCount; ++index) {
        const ObservedStep& step = observation.steps[index];
        steps.push_back({copied(step.place), step.attribute, step.target});
    }
    for (std::uint32_t index = 0; index < observation.relatedCount; ++index) {
        related.push_back(copied(observation.related[index]));
    }
}

std::string printed(const ObservedCopy& observation) {
    std::string line = observation.isArtefact() ? "artefact " : "";
    if (hasCode(observation.kind)) {
        line += std::to_string(observation.code) + " ";
    }
    line += text(observation.steps.front().place);
    if (!observation.element.empty()) {
        line += " <" + observation.element + ">";
    }
    if (!observation.target.empty()) {
        line += " " + observation.target;
    }
    line += field("detail", observation.detail) + field("reason", observation.reason);
    if (!observation.related.empty()) {
        line += " ring";
    }
    for (const ObservedCopy::Place& place : observation.related) {
        line += " " + text(place);
    }
    for (std::size_t index = 1; index < observation.steps.size(); ++index) {
        const ObservedCopy::Step& step = observation.steps[index];
        line += " via " + text(step.place) + " " + step.attribute + "=" + step.target;
    }
    return line;
}

ComStatus RecordingObserver::queryInterface(const InterfaceId& /*id*/, void** object) {
    *object = nullptr;
    return kComNoInterface;
}

ComStatus RecordingObserver::observe(const Observation* observation) {
    observations.emplace_back(*observation);
    return outcome;
}

std::string RecordingObserver::faults() const {
    return told(ObservationKind::kFault);
}

std::string RecordingObserver::told(ObservationKind kind) const {
    std::string text;
    for (const ObservedCopy& observation : observations) {
        if (observation.kind == kind) {
            text += (text.empty() ? "" : "\n") + printed(observation);
        }
    }
    return text;
}

std::string ObservedScope::faults() const {
    RunObserver::existing()->finish([](const xercesc::DOMElement&) { return true; });
    return host.faults();
}

}  // namespace marrowpress
