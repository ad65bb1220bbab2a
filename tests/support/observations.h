#pragma once

#include "marrowpress/observer.h"

namespace marrowpress {

/// An observation with no place and no texts but its target, which must outlive it.
inline Observation observationOf(ObservationKind kind, const char* target) {
    static constexpr ObservedStep kNowhere{{nullptr, 0, 0}, "", ""};
    Observation observation{};
    observation.kind = kind;
    observation.element = "";
    observation.target = target;
    observation.detail = "";
    observation.reason = "";
    observation.line = "";
    observation.steps = &kNowhere;
    observation.stepCount = 1;
    return observation;
}

/// A fault with a target. Its other texts may be set afterwards.
inline Observation faultOf(FaultCode code, const char* target) {
    Observation observation = observationOf(ObservationKind::kFault, target);
    observation.code = static_cast<std::uint32_t>(code);
    return observation;
}

}  // namespace marrowpress
