#include "cli/run_measures.h"

#include <filesystem>
#include <ostream>

#include "cli/file_failure.h"
#include "cli/file_replacement.h"
#include "cli/run_statistics.h"
#include "cli/trace_events.h"

namespace marrowpress {

RunMeasures::RunMeasures(const DiagnosticsOptions& options) : options_(options) {
    if (options.timings || options.showsStatistics) {
        clock_.emplace();
    }
}

ExitCode RunMeasures::finish(ExitCode code, const std::string& title, const Streams& streams) {
    if (!clock_) {
        return code;
    }
    clock_->end();
    if (options_.showsStatistics) {
        streams.err << statisticsText(*clock_, usedResources());
    }
    if (options_.timings) {
        try {
            replaceFile(std::filesystem::absolute(*options_.timings), traceEvents(*clock_, title));
        } catch (const FileFailure& failure) {
            streams.err << "marrowpress: " << failure.what() << '\n';
            return ExitCode::kRunFailed;
        }
    }
    return code;
}

}  // namespace marrowpress
