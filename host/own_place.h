#pragma once

#include <filesystem>

namespace marrowpress {

/// Where something stands in an installation, as seen from the folder of what looks for it.
struct InstalledPaths {
    std::filesystem::path fromProgram;
    std::filesystem::path fromLibrary;
};

/// The program, or the shared library that this code is linked into: absolute, without links.
///
/// @throws std::filesystem::filesystem_error when it cannot be told.
std::filesystem::path ownPath();

/// Whether this code is part of a shared library.
bool isInLibrary();

/// The file or folder `name`: beside the program or the library, as in a build folder, else where
/// an installation has it. The first that exists, the one beside them when none does.
std::filesystem::path findBesideOrInstalled(const std::filesystem::path& name,
                                            const InstalledPaths& installed);

}  // namespace marrowpress
