#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

namespace marrowpress {

/// What a command writes to: results go to `out`, talk goes to `err`.
struct Streams {
    std::ostream& out;
    std::ostream& err;
};

/// Readies the process for honest results: a closed standard stream is taken by nothing that is
/// opened later, and a reader that goes away or a file that grows too large is a failed write
/// instead of the end of the process.
void secureStandardStreams();

/// Writes `text` to standard output at once; false when that fails.
[[nodiscard]] bool writeOutput(const Streams& streams, std::string_view text);

/// As `writeOutput`, and says on standard error when that fails.
[[nodiscard]] bool writeResult(const Streams& streams, std::string_view text);

/// Shows a report line as it is, ended by one line end whether it came with one or not.
void showReport(std::ostream& err, std::string_view text);

/// Shows a progress line, marked so that no report line looks like it.
void showProgress(std::ostream& err, std::string_view text);

}  // namespace marrowpress
