#include <unistd.h>

#include <exception>
#include <iostream>

#include "cli/batch/batch_command.h"
#include "cli/batch/watched_batch.h"
#include "cli/batch/worker_command.h"
#include "cli/check_command.h"
#include "cli/command_line.h"
#include "cli/deps_command.h"
#include "cli/doctor_command.h"
#include "cli/exit_code.h"
#include "cli/explain_command.h"
#include "cli/help_formatter.h"
#include "cli/host_command.h"
#include "cli/key_names_command.h"
#include "cli/keys_command.h"
#include "cli/options.h"
#include "cli/publish_command.h"
#include "cli/streams.h"
#include "cli/watch/watch_command.h"
#include "findings/language.h"

namespace {

using namespace marrowpress;

struct Run {
    const Streams& streams;

    ExitCode operator()(const HostOptions& options) const { return runHost(options, streams); }
    ExitCode operator()(const PublishOptions& options) const {
        chooseLanguage(options.diagnostics.language);
        return runPublish(options, streams);
    }
    ExitCode operator()(const WatchOptions& options) const {
        chooseLanguage(options.diagnostics.language);
        return runWatch(options, streams);
    }
    ExitCode operator()(const CheckOptions& options) const {
        chooseLanguage(options.diagnostics.language);
        return runCheck(options, streams);
    }
    ExitCode operator()(const KeysOptions& options) const {
        chooseLanguage(options.diagnostics.language);
        return runKeys(options, streams);
    }
    ExitCode operator()(const DepsOptions& options) const {
        chooseLanguage(options.diagnostics.language);
        return runDeps(options, streams);
    }
    ExitCode operator()(const DoctorOptions& options) const {
        chooseLanguage(options.diagnostics.language);
        return runDoctor(options, streams);
    }
    ExitCode operator()(const BatchOptions& options) const {
        chooseLanguage(options.diagnostics.language);
        return options.action == BatchAction::kWatch ? runBatchWatch(options, streams)
                                                     : runBatch(options, streams);
    }
    ExitCode operator()(const WorkerOptions& options) const {
        chooseLanguage(options.diagnostics.language);
        return runWorker(options, streams);
    }
    ExitCode operator()(const ExplainOptions& options) const {
        chooseLanguage(options.language);
        return runExplain(options, helpWidth(STDOUT_FILENO), streams);
    }
    ExitCode operator()(const CompletionOptions& options) const {
        return runKeyNames(*options.map, streams);
    }
    ExitCode operator()(const Information& information) const {
        return writeResult(streams, information.text) ? ExitCode::kSuccess : ExitCode::kRunFailed;
    }
    ExitCode operator()(const UsageError& error) const {
        streams.err << error.text;
        return ExitCode::kWrongUsage;
    }
};

}  // namespace

int main(int argc, char** argv) {
    const Streams streams{std::cout, std::cerr};
    try {
        secureStandardStreams();
        const Options options = parseOptions({argv + 1, argv + argc}, helpWidth(STDOUT_FILENO));
        return static_cast<int>(std::visit(Run{streams}, options));
    } catch (const std::exception& failure) {
        std::cerr << "marrowpress: " << failure.what() << '\n';
        return static_cast<int>(ExitCode::kRunFailed);
    }
}
