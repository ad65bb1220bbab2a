#pragma once

#include <cstddef>

#include "cli/exit_code.h"
#include "cli/options.h"
#include "cli/streams.h"

namespace marrowpress {

/// Writes to standard output what the findings of an id mean, with an example and what helps; or
/// all ids, with severity and title, one a line. Lines of prose have `width` columns at most.
ExitCode runExplain(const ExplainOptions& options, std::size_t width, const Streams& streams);

}  // namespace marrowpress
