#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "findings/finding_lines.h"

namespace marrowpress {

struct JunitOptions {
    std::string map;  ///< Absolute; bears what has no file, and stands for a run without findings.
    std::string currentFolder;  ///< Absolute; files in it are named relative to it.
    Words words;
};

/// Writes a JUnit report: a test case for each file with findings, which fails when one of them is
/// an error; all others are its output. Artefacts are left out. A run that failed without an error
/// is an error of the map's case.
void writeJunit(std::ostream& out, const std::vector<Finding>& findings,
                const FindingSummary& summary, const JunitOptions& options);

}  // namespace marrowpress
