#pragma once

#include <string>

namespace marrowpress {

/// The bytes of the file at `path`.
///
/// @throws std::system_error that names the path and says why it cannot be read.
std::string readFile(const std::string& path);

/// The bytes of standard input, to its end.
///
/// @throws std::system_error that says "cannot read standard input", and why.
std::string readStandardInput();

}  // namespace marrowpress
