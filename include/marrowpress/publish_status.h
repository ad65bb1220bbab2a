#pragma once

#include <cstdint>

namespace marrowpress {

/// The status of a publish request: the first value of its answer.
enum PublishStatus : std::int32_t {
    kPublished = 0,
    /// The run failed: what it could not do without could not be read, or anything unforeseen.
    kRunFailed = -42,
    /// A malformed request, a parameter that is missing or of another type, or an old output that
    /// could not be removed.
    kRequestRefused = -43,
};

}  // namespace marrowpress
