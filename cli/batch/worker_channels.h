#pragma once

namespace marrowpress {

// The descriptors by which a batch and the process of a job know each other, besides standard
// input, on which the job's line of the plan comes.

/// Gets the name of each phase as it begins, a line each.
inline constexpr int kPhaseDescriptor = 3;
/// Gets the result.
inline constexpr int kResultDescriptor = 4;

/// How a worker ends whose composite has to be made in its place. BSD's EX_TEMPFAIL.
inline constexpr int kNeedsItsPlaceExit = 75;

}  // namespace marrowpress
