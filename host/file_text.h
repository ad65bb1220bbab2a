#pragma once

#include <string>

namespace marrowpress {

/// The bytes of the file at `path`.
///
/// @throws std::system_error that names the path and says why it cannot be read.
std::string readFile(const std::string& path);

}  // namespace marrowpress
