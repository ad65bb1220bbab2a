#include "cli/publish_command.h"

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <ostream>
#include <system_error>

#include "cli/public_ids.h"
#include "host/client_session.h"
#include "marrowpress/messages.h"

namespace marrowpress {
namespace {

enum PublishStatus : std::int32_t {
    kPublished = 0,
    kRunFailedStatus = -42,
    kRefusedStatus = -43,
};

/// What a run came to.
struct RunOutcome {
    std::optional<std::int32_t> status;  ///< Empty when the client gave no answer.
    bool hasUnwrittenDocument = false;
};

std::optional<std::string> findFault(const PublishOptions& options, const PublishPaths& paths) {
    if (std::optional<std::string> fault = findCatalogFault(options.catalogs)) return fault;
    return findPublishFault(options, paths);
}

RunOutcome runRequest(const PublishOptions& options, const PublishPaths& paths, std::ostream& err) {
    RunOutcome outcome;
    StandInHostOptions host;
    host.resolvePublicId = makePublicIdResolver(options.catalogs);
    host.onProgress = [&err](std::string_view line) { showProgress(err, line); };
    host.onConsole = [&](std::string_view line) {
        outcome.hasUnwrittenDocument |= saysCannotWrite(line);
        showReport(err, line);
    };
    ClientSession session(std::move(host));
    const std::optional<TypedValues> answer = session.send(buildRequest(options, paths));
    if (answer) outcome.status = statusOf(*answer);
    return outcome;
}

/// The sentence about a run that came to nothing; empty when the output was written.
std::optional<std::string> findRunFault(const RunOutcome& outcome, const PublishOptions& options,
                                        const PublishPaths& paths) {
    if (!outcome.status) return "the client gave no answer";
    switch (*outcome.status) {
        case kPublished:
            break;
        case kRunFailedStatus:
            return "the run failed (status -42)";
        case kRefusedStatus:
            return "the request was refused, or an old output could not be removed (status -43)";
        default:
            return "the run ended with the unknown status " + std::to_string(*outcome.status);
    }
    if (outcome.hasUnwrittenDocument) return "a document could not be written";
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(paths.output, ignored)) {
        return "the run ended, but " + options.output + " was not written";
    }
    return std::nullopt;
}

/// The output as it was given, unless the client reads that as another file.
std::string shownOutput(const PublishOptions& options, const PublishPaths& paths) {
    std::error_code ignored;
    const bool isSame = std::filesystem::equivalent(options.output, paths.output, ignored);
    return isSame ? options.output : paths.output.string();
}

}  // namespace

std::string buildRequest(const PublishOptions& options, const PublishPaths& paths) {
    boost::json::object params{{"ditamap", paths.map.string()}};
    const char* type = nullptr;
    switch (options.format) {
        case OutputFormat::kComposite:
            type = "PublishComp";
            params["output"] = paths.output.string();
            break;
    }
    params["ditaVal"] = paths.filter ? paths.filter->string() : std::string();
    params["keyspaceDocDtd"] = options.keySpaceDtd;
    params["compositeDocDtd"] = options.compositeDtd;
    params["usePrint"] = options.isForPrint;
    return boost::json::serialize(
        boost::json::object{{"type", type}, {"params", std::move(params)}});
}

bool saysCannotWrite(std::string_view consoleText) {
    constexpr std::string_view kPattern = messageText(MessageId::kCannotWrite);
    return consoleText.starts_with(kPattern.substr(0, kPattern.find("%s")));
}

ExitCode runPublish(const PublishOptions& options, const Streams& streams) {
    const PublishPaths paths = resolvePublishPaths(options);
    if (const std::optional<std::string> fault = findFault(options, paths)) {
        streams.err << usageErrorText("publish", *fault);
        return ExitCode::kWrongUsage;
    }
    const RunOutcome outcome = runRequest(options, paths, streams.err);
    if (const auto fault = findRunFault(outcome, options, paths)) {
        streams.err << "marrowpress publish: " << *fault << ".\n";
        return ExitCode::kRunFailed;
    }
    return writeResult(streams, shownOutput(options, paths) + "\n") ? ExitCode::kSuccess
                                                                    : ExitCode::kRunFailed;
}

}  // namespace marrowpress
