#pragma once

#include <filesystem>

#include "host/stand_in_host_options.h"

namespace marrowpress {

/// A host that finds "map.dtd" and "topic.dtd" in the folder `dtds`, and nothing else.
StandInHostOptions hostWithDtds(const std::filesystem::path& dtds);

}  // namespace marrowpress
