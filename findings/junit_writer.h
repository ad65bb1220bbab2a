#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "findings/finding_lines.h"
#include "findings/xml_writer.h"

namespace marrowpress {

struct JunitOptions {
    std::string map;  ///< Absolute; bears what has no file, and stands for a run without findings.
    std::string currentFolder;  ///< Absolute; files in it are named relative to it.
    Words words;
};

/// Writes a JUnit report, a suite at a time: a test case for each file with findings, which fails
/// when one of them is an error; all others are its output. Artefacts are left out. A run that
/// failed without an error is an error of the map's case.
class JunitSuites {
public:
    /// @param out  Must outlive this object.
    JunitSuites(std::ostream& out, LineOptions options);

    /// @param map  As that of `JunitOptions`.
    void add(const std::string& name, const std::string& map, const std::vector<Finding>& findings,
             const FindingSummary& summary);

    /// To be called once, behind the last suite.
    void end();

private:
    XmlWriter xml_;
    LineOptions options_;
};

/// Writes a report with one suite.
void writeJunit(std::ostream& out, const std::vector<Finding>& findings,
                const FindingSummary& summary, const JunitOptions& options);

}  // namespace marrowpress
