#pragma once

#include <string>

namespace marrowpress {

/// "marrowpress 1.2.3" on a line of its own, and the libraries that it was built and runs with.
std::string versionText();

}  // namespace marrowpress
