#pragma once

#include <cstdint>

namespace marrowpress {

/// Which publisher a request, its parameters and its result belong to.
enum class PublisherId : std::uint32_t {
    kComposite = 0,
    kFlatBook = 1,
    kNone = 2,  ///< of a result only: what a run that yields nothing of its own answers with
};

}  // namespace marrowpress
