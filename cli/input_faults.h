#pragma once

#include <optional>
#include <string>

#include "cli/options.h"
#include "cli/publish_paths.h"
#include "findings/profile.h"

namespace marrowpress {

/// Why a run must not be started with the map at `path`, as a sentence that names the argument;
/// `shown` is the path as it was given. Empty for a map, and for a file that only the run can tell
/// what is wrong with: one that is not well-formed.
std::optional<std::string> findMapFault(const std::string& shown, const std::string& path);

/// Why a run must not be started with its catalogs, its arguments' texts or its map, as a sentence
/// that names the argument; empty when it may.
std::optional<std::string> findInputFault(const RunOptions& options, const PublishPaths& paths);

/// What is wrong with the profile that `argument`, such as "--filter", names as `shown`.
std::string profileFaultText(const std::string& argument, const std::string& shown,
                             const ProfileFault& fault);

/// Why the file that `argument` names as `shown` is no profile; empty when it is one.
std::optional<std::string> findProfileRootFault(const std::string& argument,
                                                const std::string& shown, const Profile& profile);

}  // namespace marrowpress
