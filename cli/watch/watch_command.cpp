#include "cli/watch/watch_command.h"

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <system_error>

#include "cli/aside_composite.h"
#include "cli/file_failure.h"
#include "cli/file_replacement.h"
#include "cli/memory_file.h"
#include "cli/output_folder.h"
#include "cli/publish_command.h"
#include "cli/publish_paths.h"
#include "cli/removal_on_signal.h"
#include "cli/watch/watch_loop.h"
#include "results/result_json.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// The publication of one map.
class WatchedPublication final : public WatchedWork {
public:
    WatchedPublication(const WatchOptions& options, const Streams& streams)
        : options_(options), streams_(streams), folder_(fs::current_path()) {}

    ExitCode run(int channel) override;
    std::optional<WatchOutcome> outcomeOf(const TaskEnd& end) override;

private:
    void keep(const RunResult& result) const;

    const WatchOptions& options_;
    const Streams& streams_;
    fs::path folder_;
};

ExitCode WatchedPublication::run(int channel) {
    RunRecording recording;
    recording.id = fs::path(options_.map).stem().string();
    // Whoever looks at the output sees it whole, and the one of the run before until then.
    recording.isMadeAside = true;
    recording.take = [this, channel](const RunResult& result) {
        tell(channel, resultText(result));
        keep(result);
    };
    try {
        return runPublish(options_, streams_, &recording);
    } catch (const NeedsItsPlace&) {
        recording.isMadeAside = false;
        return runPublish(options_, streams_, &recording);
    }
}

void WatchedPublication::keep(const RunResult& result) const {
    if (options_.result) {
        try {
            replaceFile(fs::absolute(*options_.result), resultText(result));
        } catch (const FileFailure& failure) {
            streams_.err << "marrowpress: " << failure.what() << ".\n";
        }
    }
}

std::optional<WatchOutcome> WatchedPublication::outcomeOf(const TaskEnd& end) {
    if (end.told.empty()) {
        return std::nullopt;
    }
    std::optional<WatchOutcome> outcome(std::in_place);
    outcome->add(parseResult(end.told), folder_.string());
    return outcome;
}

}  // namespace

ExitCode runWatch(const WatchOptions& options, const Streams& streams) {
    const fs::path outputFolder = outputFolderOf(options, resolvePublishPaths(options)).path;
    WatchedPublication publication(options, streams);
    removeLeftAside(outputFolder);
    const WatchEnd end = watch(
        publication,
        {options.polls, options.command,
         options.diagnostics.isQuiet || options.diagnostics.format == DiagnosticsFormat::kJson},
        streams);
    // A run that did not react may have left something.
    removeLeftAside(outputFolder);
    if (end.signal != 0) {
        endBySignal(end.signal);
    }
    return end.code;
}

}  // namespace marrowpress
