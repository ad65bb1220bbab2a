#include <exception>
#include <iostream>

#include "cli/exit_code.h"
#include "cli/host_command.h"
#include "cli/options.h"
#include "cli/publish_command.h"
#include "cli/streams.h"

namespace {

using namespace marrowpress;

struct Run {
    const Streams& streams;

    ExitCode operator()(const HostOptions& options) const { return runHost(options, streams); }
    ExitCode operator()(const PublishOptions& options) const {
        return runPublish(options, streams);
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
        const Options options = parseOptions({argv + 1, argv + argc});
        return static_cast<int>(std::visit(Run{streams}, options));
    } catch (const std::exception& failure) {
        std::cerr << "marrowpress: " << failure.what() << '\n';
        return static_cast<int>(ExitCode::kRunFailed);
    }
}
