#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/diagnostics_options.h"
#include "cli/terminal.h"
#include "marrowpress/observer.h"

namespace marrowpress {

/// Whether standard error is for tools, and gets nothing but findings.
bool isForTools(const DiagnosticsOptions& options);

/// What is shown while a run lasts: on a terminal one live line with the phase, a count and the
/// file; elsewhere nothing, or each progress line where the user wants to see them.
class RunDisplay {
public:
    /// `err` writes to standard error, and must outlive this object.
    RunDisplay(const DiagnosticsOptions& options, std::ostream& err);

    /// A progress line of the client.
    void showProgressLine(std::string_view line);

    /// A report line of the client, for a run without findings.
    void showReportLine(std::string_view line);

    void observe(const Observation& observation);

    /// To be called before anything else is written to standard error.
    void end() { live_.clear(); }

private:
    void showLive(std::string_view file);

    std::ostream& err_;
    LiveLine live_;
    bool isLive_;
    bool isVerbose_;
    std::string phase_;
    std::size_t count_ = 0;
};

}  // namespace marrowpress
