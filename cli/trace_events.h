#pragma once

#include <string>

#include "runs/run_clock.h"

namespace marrowpress {

/// What the clock has measured, in Chrome's trace event format: a JSON object that browsers' tools
/// for profiles and Perfetto show as a timeline. Phases and documents are complete events.
///
/// @param title  Of the timeline.
std::string traceEvents(const RunClock& clock, const std::string& title);

}  // namespace marrowpress
