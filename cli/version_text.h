#pragma once

#include <string>
#include <utility>
#include <vector>

namespace marrowpress {

/// "marrowpress 1.2.3" on a line of its own, and the libraries that it was built and runs with.
std::string versionText();

/// The program and the libraries that have a part in what it writes, and the versions of those in
/// use.
std::vector<std::pair<std::string, std::string>> libraryVersions();

}  // namespace marrowpress
