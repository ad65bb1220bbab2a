#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "cli/options.h"
#include "cli/publish_paths.h"

namespace marrowpress {

/// The text of the publish request that `options` ask for. `filter` is the one profile that the
/// client takes. All texts must be UTF-8.
std::string buildRequest(const PublishOptions& options, const PublishPaths& paths,
                         const std::optional<std::filesystem::path>& filter);

}  // namespace marrowpress
