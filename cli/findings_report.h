#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/diagnostics_options.h"
#include "cli/exit_code.h"
#include "cli/report_files.h"
#include "findings/baseline.h"
#include "findings/fold.h"

namespace marrowpress {

/// Writes findings, and what a run came to, in some form.
using FindingsWriting =
    std::function<void(std::ostream&, const std::vector<Finding>&, const FindingSummary&)>;

/// What is written by whoever has more to tell than findings. Both may be empty.
struct FurtherWriting {
    /// The page of --report, if that is among the options.
    FindingsWriting page;
    /// Gets the findings and the exit code at the end, when nothing can change them.
    std::function<void(const std::vector<Finding>&, const FindingSummary&)> result;
};

/// The findings of a command, on their way to whoever is to read them.
class FindingsReport {
public:
    /// Reads the baseline, if there is one.
    ///
    /// @param options  Must outlive this object.
    FindingsReport(const DiagnosticsOptions& options, std::string map, std::string currentFolder);

    /// Why the run must not be started, as a sentence that names the argument; empty when it may.
    const std::optional<std::string>& fault() const noexcept { return fault_; }

    /// The files that are written, for `findReportFault`.
    std::vector<NamedPath> files() const;

    /// Writes the findings in every form that was asked for, and gives the exit code: that of the
    /// run, unless the run went well and the findings say otherwise.
    ///
    /// A file that cannot be written is a finding of the form that comes last.
    ///
    /// @param runCode  `kSuccess` or `kRunFailed`.
    ExitCode write(FindingList& list, std::size_t droppedFaults, std::size_t topics,
                   ExitCode runCode, std::ostream& err, const FurtherWriting& further = {}) const;

private:
    ExitCode codeOf(const FindingSummary& summary, std::optional<Severity> worstDropped,
                    ExitCode runCode) const;
    bool writeMain(const std::vector<Finding>& findings, const FindingSummary& summary,
                   std::ostream& err) const;
    /// The files that cannot be written, as findings.
    std::vector<Finding> writeReports(const std::vector<Finding>& findings,
                                      const FindingSummary& summary,
                                      const FindingsWriting& writePage) const;
    void writeAnnotations(const std::vector<Finding>& findings, std::ostream& err) const;

    using Clock = std::chrono::steady_clock;

    const DiagnosticsOptions& options_;
    std::string map_;
    std::string currentFolder_;
    std::optional<std::string> fault_;
    std::unique_ptr<Baseline> baseline_;
    Clock::time_point start_ = Clock::now();
};

}  // namespace marrowpress
