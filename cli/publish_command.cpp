#include "cli/publish_command.h"

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <ostream>
#include <system_error>
#include <unordered_set>

#include "cli/public_ids.h"
#include "host/client_session.h"
#include "marrowpress/messages.h"
#include "marrowpress/publish_status.h"

namespace marrowpress {
namespace {

/// What a run came to.
struct RunOutcome {
    std::optional<std::int32_t> status;  ///< Empty when the client gave no answer.
    bool hasUnwrittenDocument = false;
    std::optional<std::vector<std::string>> components;  ///< A flat book's, once it was published.
};

std::optional<std::string> findFault(const PublishOptions& options, const PublishPaths& paths) {
    if (std::optional<std::string> fault = findCatalogOptionFault(options.catalogs)) {
        return fault;
    }
    return findPublishFault(options, paths);
}

RunOutcome runRequest(const PublishOptions& options, const PublishPaths& paths, std::ostream& err) {
    RunOutcome outcome;
    StandInHostOptions host;
    host.resolvePublicId = makePublicIdResolver(options.catalogs);
    host.onProgress = [&err](std::string_view line) { showProgress(err, line); };
    host.onConsole = [&](std::optional<MessageId> message, std::string_view line) {
        outcome.hasUnwrittenDocument |= message == MessageId::kCannotWrite;
        showReport(err, line);
    };
    ClientSession session(std::move(host));
    const std::optional<TypedValues> answer = session.send(buildRequest(options, paths));
    if (!answer) {
        return outcome;
    }
    outcome.status = statusOf(*answer);
    outcome.components = componentsOf(*answer);
    return outcome;
}

std::string withStatus(PublishStatus status) {
    return " (status " + std::to_string(status) + ")";
}

/// The sentence about a run that did not come to its end; empty when it did.
std::optional<std::string> findStatusFault(const RunOutcome& outcome) {
    if (!outcome.status) {
        return "the client gave no answer";
    }
    switch (*outcome.status) {
        case kPublished:
            return std::nullopt;
        case kRunFailed:
            return "the run failed" + withStatus(kRunFailed);
        case kRequestRefused:
            return "the request was refused, or an old output could not be removed" +
                   withStatus(kRequestRefused);
        default:
            return "the run ended with the unknown status " + std::to_string(*outcome.status);
    }
}

/// The sentence about a run that came to nothing; empty when all of its output was written.
std::optional<std::string> findRunFault(const RunOutcome& outcome, const PublishOptions& options,
                                        const PublishPaths& paths) {
    if (std::optional<std::string> fault = findStatusFault(outcome)) {
        return fault;
    }
    if (outcome.hasUnwrittenDocument) {
        return "a document could not be written";
    }
    if (options.format == OutputFormat::kComposite) {
        return findMissingFile({paths.output.string()});
    }
    if (!outcome.components) {
        return "the client did not say what it wrote";
    }
    return findMissingFile(*outcome.components);
}

/// The output as it was given, unless the client reads that as another file.
std::string shownOutput(const PublishOptions& options, const PublishPaths& paths) {
    std::error_code ignored;
    const bool isSame = std::filesystem::equivalent(options.output, paths.output, ignored);
    return isSame ? options.output : paths.output.string();
}

/// What a good run gives on standard output.
std::string resultText(const RunOutcome& outcome, const PublishOptions& options,
                       const PublishPaths& paths) {
    if (options.format == OutputFormat::kComposite) {
        return shownOutput(options, paths) + "\n";
    }
    std::string text;
    for (const std::string& component : *outcome.components) {
        text += component + "\n";
    }
    return text;
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
        case OutputFormat::kFlatBook:
            type = "PublishFlatBook";
            params["outputDir"] = paths.output.string();
            params["generateQSComponentsAtOneLoc"] = options.isAtOneLocation;
            break;
    }
    params["ditaVal"] = paths.filter ? paths.filter->string() : std::string();
    params["keyspaceDocDtd"] = options.keySpaceDtd;
    params["compositeDocDtd"] = options.compositeDtd;
    params["usePrint"] = options.isForPrint;
    return boost::json::serialize(
        boost::json::object{{"type", type}, {"params", std::move(params)}});
}

std::optional<std::vector<std::string>> componentsOf(const TypedValues& answer) {
    constexpr std::size_t kIndex = 4;
    if (answer.size() <= kIndex) {
        return std::nullopt;
    }
    const auto* const listed = std::get_if<std::vector<std::string>>(&answer[kIndex].value);
    if (!listed) {
        return std::nullopt;
    }
    std::vector<std::string> components;
    // A source that the map refers to twice is one component, which the answer names twice.
    std::unordered_set<std::string_view> seen;
    for (const std::string& path : *listed) {
        if (seen.insert(path).second) {
            components.push_back(path);
        }
    }
    return components;
}

std::optional<std::string> findMissingFile(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        std::error_code ignored;
        if (std::filesystem::is_regular_file(path, ignored)) {
            continue;
        }
        return "the run ended, but " + path + " was not written";
    }
    return std::nullopt;
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
    return writeResult(streams, resultText(outcome, options, paths)) ? ExitCode::kSuccess
                                                                     : ExitCode::kRunFailed;
}

}  // namespace marrowpress
