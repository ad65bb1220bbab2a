#include "cli/run_display.h"

#include <unistd.h>

#include "cli/streams.h"

namespace marrowpress {
namespace {

bool showsProgress(const DiagnosticsOptions& options) {
    return !options.isQuiet && !isForTools(options);
}

std::string_view nameOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

}  // namespace

bool isForTools(const DiagnosticsOptions& options) {
    const bool isToolFormat =
        options.format == DiagnosticsFormat::kShort || options.format == DiagnosticsFormat::kJson;
    return isToolFormat && !options.file;
}

RunDisplay::RunDisplay(const DiagnosticsOptions& options, std::ostream& err)
    : err_(err),
      live_(err, STDERR_FILENO),
      isLive_(showsProgress(options) && !options.hasNoProgress && !options.isVerbose),
      isVerbose_(showsProgress(options) && options.isVerbose) {}

void RunDisplay::showProgressLine(std::string_view line) {
    if (isVerbose_) {
        showProgress(err_, line);
    }
}

void RunDisplay::showReportLine(std::string_view line) {
    live_.clear();
    showReport(err_, line);
}

void RunDisplay::observe(const Observation& observation) {
    if (observation.kind == ObservationKind::kPhase) {
        phase_ = observation.target;
        count_ = 0;
        showLive({});
    } else if (observation.kind == ObservationKind::kDocumentRead ||
               observation.kind == ObservationKind::kTopic) {
        ++count_;
        showLive(nameOf(observation.target));
    }
}

void RunDisplay::showLive(std::string_view file) {
    if (!isLive_) {
        return;
    }
    std::string line = phase_;
    if (count_ > 0) {
        line.append(" ").append(std::to_string(count_)).append(" ").append(file);
    }
    live_.show(line);
}

}  // namespace marrowpress
