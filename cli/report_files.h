#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace marrowpress {

/// A file, and the argument that names it.
struct NamedPath {
    std::string argument;        ///< "--sarif"
    std::string shown;           ///< As it was given.
    std::filesystem::path path;  ///< Absolute.
};

/// `given` as seen from the current folder.
///
/// @throws std::filesystem::filesystem_error when there is no current folder.
NamedPath namedPath(const std::string& argument, const std::string& given);

/// The files of a run that no report may take the place of.
struct RunFiles {
    std::vector<NamedPath> inputs;
    std::vector<NamedPath> outputs;  ///< What is written, used in passing, or removed.
    bool hasComponents = false;      ///< The names of a flat book's are known to the run alone.
    /// Missing ones that the run makes; absolute and lexically normal.
    std::set<std::filesystem::path> madeFolders = {};
};

/// Why the run must not be started with these reports, as a sentence that names the argument; empty
/// when it may.
///
/// Each must be writable, in a folder that exists, and another file than all inputs, outputs and
/// other reports, by whatever path. Pipes and devices may be named; the null device several times.
std::optional<std::string> findReportFault(const std::vector<NamedPath>& reports,
                                           const RunFiles& files);

}  // namespace marrowpress
