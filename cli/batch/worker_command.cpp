#include "cli/batch/worker_command.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/aside_composite.h"
#include "cli/batch/job.h"
#include "cli/batch/job_lines.h"
#include "cli/batch/worker_channels.h"
#include "cli/check_command.h"
#include "cli/memory_file.h"
#include "cli/publish_command.h"
#include "host/file_text.h"
#include "results/result_json.h"
#include "results/up_to_date.h"

namespace marrowpress {
namespace {

/// How often a run is made again because its sources were changed while it read them.
constexpr unsigned kMostTries = 3;

/// A job does not outlive its batch, and cleans up then.
void endWithBatch(pid_t batch) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != batch) {
        raise(SIGTERM);
    }
}

ExitCode runOnce(const WorkerOptions& options, const Job& job, const RunRecording& recording,
                 const Streams& streams) {
    PublishOptions publish = job.options;
    publish.catalogs = options.catalogs;
    publish.diagnostics = options.diagnostics;
    if (!options.isCheck) {
        return runPublish(publish, streams, &recording);
    }
    CheckOptions check;
    static_cast<RunOptions&>(check) = static_cast<const RunOptions&>(publish);
    check.output.clear();
    return runCheck(check, streams, &recording);
}

}  // namespace

ExitCode runWorker(const WorkerOptions& options, const Streams& streams) {
    endWithBatch(options.batch);
    std::istringstream in(readStandardInput());
    const std::vector<Job> jobs = readJobLines(in, "job");
    if (jobs.size() != 1) {
        streams.err << usageErrorText("job", "standard input has to be one job");
        return ExitCode::kWrongUsage;
    }
    const Job& job = jobs.front();
    RunResult result;
    bool isRecorded = false;
    RunRecording recording;
    recording.id = job.id;
    recording.isMadeAside = !options.isInPlace;
    recording.onPhase = [](std::string_view phase) {
        tell(kPhaseDescriptor, std::string(phase) + "\n");
    };
    recording.take = [&](const RunResult& made) {
        result = made;
        isRecorded = true;
    };
    ExitCode code = ExitCode::kSuccess;
    try {
        for (unsigned tries = 1; tries <= kMostTries; ++tries) {
            code = runOnce(options, job, recording, streams);
            result.run.tries = tries;
            if (!isRecorded || !wasChangedMeanwhile(result)) {
                break;
            }
        }
    } catch (const NeedsItsPlace&) {
        _exit(kNeedsItsPlaceExit);
    }
    if (isRecorded) {
        tell(kResultDescriptor, resultText(result));
    }
    return code;
}

}  // namespace marrowpress
