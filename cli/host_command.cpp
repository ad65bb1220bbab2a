#include "cli/host_command.h"

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <filesystem>
#include <fstream>
#include <list>
#include <ostream>
#include <stdexcept>
#include <system_error>

#include "cli/file_place.h"
#include "cli/removal_on_signal.h"
#include "cli/request_files.h"
#include "host/client_session.h"
#include "host/file_text.h"
#include "host/open_documents.h"
#include "host/trace.h"
#include "runs/public_ids.h"

namespace marrowpress {
namespace {

/// A file that the arguments name and that cannot be used.
class ArgumentFault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::vector<std::string> readRequests(const HostOptions& options) {
    std::vector<std::string> texts;
    for (const std::string& request : options.requests) {
        try {
            texts.push_back(request == "-" ? readStandardInput(kMostInputBytes)
                                           : readFile(request, kMostInputBytes));
        } catch (const std::system_error& fault) {
            throw ArgumentFault(std::string("REQUEST: ") + fault.what());
        }
    }
    return texts;
}

std::vector<OpenDocument> openDocumentsOf(const HostOptions& options) {
    if (!options.openDocuments) {
        return {};
    }
    try {
        return readOpenDocuments(*options.openDocuments);
    } catch (const std::runtime_error& fault) {
        throw ArgumentFault(std::string("--open-documents: ") + fault.what());
    }
}

/// Whether the trace's file is there and could not be emptied: a pipe or a device loses nothing.
bool isIrregular(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored) &&
           !std::filesystem::is_regular_file(path, ignored);
}

void rejectTraceOver(const HostOptions& options, const std::string& argument,
                     const std::filesystem::path& source) {
    if (!haveOnePlace(*options.trace, source)) {
        return;
    }
    throw ArgumentFault("--trace: " + *options.trace + " is also " + argument +
                        ", and would be emptied; choose another file");
}

void rejectTraceOverArguments(const HostOptions& options) {
    for (const std::string& request : options.requests) {
        if (request == "-") {
            rejectTraceOver(options, "what standard input reads", "/dev/stdin");
        } else {
            rejectTraceOver(options, "REQUEST " + request, request);
        }
    }
    if (options.openDocuments) {
        rejectTraceOver(options, "--open-documents", *options.openDocuments);
    }
    if (options.catalogs.empty() && !options.hasXmlUtilities) {
        return;
    }
    for (const std::filesystem::path& catalog : catalogFiles(options.catalogs)) {
        rejectTraceOver(options, options.catalogs.empty() ? "a default catalog" : "a --catalog",
                        catalog);
    }
}

/// A run reads its map and its profile, and removes what is in the place of its output.
void rejectTraceOverFilesOf(const std::string& request, const std::string& text,
                            const HostOptions& options) {
    for (const RequestFile& file : filesOfRequest(text)) {
        if (haveOnePlace(*options.trace, file.path)) {
            throw ArgumentFault("--trace: " + *options.trace + " is also " + file.name +
                                " of REQUEST " + request + "; choose another file");
        }
    }
}

/// The trace's file is emptied when it is opened: nothing that the run reads or writes may be
/// there.
void rejectTraceOverFiles(const HostOptions& options, const std::vector<std::string>& texts) {
    if (!options.trace || isIrregular(*options.trace)) {
        return;
    }
    rejectTraceOverArguments(options);
    for (std::size_t index = 0; index < texts.size(); ++index) {
        rejectTraceOverFilesOf(options.requests[index], texts[index], options);
    }
}

/// The file of `--trace` with the writer on it; nothing is written when the option isn't there.
class TraceFile {
public:
    explicit TraceFile(const std::optional<std::string>& path) {
        if (!path) {
            return;
        }
        file_.open(*path, std::ios::binary);
        if (!file_) {
            throw ArgumentFault("--trace: cannot write " + *path);
        }
        trace_.emplace(file_);
    }

    Trace* trace() { return trace_ ? &*trace_ : nullptr; }
    bool isComplete() const { return file_.good(); }

private:
    std::ofstream file_;
    std::optional<Trace> trace_;
};

std::string answerLine(const std::optional<TypedValues>& answer) {
    boost::json::value values = nullptr;
    if (answer) {
        values = toJson(*answer);
    }
    return boost::json::serialize(boost::json::object{{"values", std::move(values)}}) + "\n";
}

bool isGood(const std::optional<TypedValues>& answer) {
    return answer && statusOf(*answer) == 0;
}

StandInHostOptions makeHostOptions(const HostOptions& options, std::ostream& err) {
    StandInHostOptions host;
    host.openDocuments = openDocumentsOf(options);
    if (options.hasXmlUtilities) {
        host.resolvePublicId = makePublicIdResolver(options.catalogs);
    }
    host.isInterrupted = DeferredSignal::hasCome;
    host.onProgress = [&err](std::string_view line) { showProgress(err, line); };
    host.onConsole = [&err](std::optional<MessageId>, std::string_view line) {
        showReport(err, line);
    };
    return host;
}

/// Sends one request. When a signal ends the run, what it made and did not finish is removed, and
/// then the process ends.
std::optional<TypedValues> sendOne(ClientSession& session, const std::string& request) {
    std::list<RemovalOnSignal> removals;
    for (const RequestFile& file : filesOfRequest(request)) {
        if (file.isMade) {
            removals.emplace_back(file.path.string(), Removal::kNewFile);
        }
    }
    const DeferredSignal deferred;
    std::optional<TypedValues> answer = session.send(request);
    if (isGood(answer)) {
        removals.clear();
    }
    return answer;
}

ExitCode sendAll(ClientSession& session, const std::vector<std::string>& requests,
                 const Streams& streams) {
    ExitCode code = ExitCode::kSuccess;
    for (const std::string& request : requests) {
        const std::optional<TypedValues> answer = sendOne(session, request);
        if (!answer) {
            streams.err << "marrowpress host: the client gave no answer\n";
        }
        if (!isGood(answer)) {
            code = ExitCode::kRunFailed;
        }
        if (!writeResult(streams, answerLine(answer))) {
            return ExitCode::kRunFailed;
        }
    }
    return code;
}

ExitCode runChecked(const HostOptions& options, const Streams& streams) {
    const std::vector<std::string> requests = readRequests(options);
    if (const std::optional<std::string> fault = findCatalogOptionFault(options.catalogs)) {
        throw ArgumentFault(*fault);
    }
    rejectTraceOverFiles(options, requests);
    StandInHostOptions host = makeHostOptions(options, streams.err);
    TraceFile trace(options.trace);
    host.trace = trace.trace();

    ExitCode code = ExitCode::kRunFailed;
    {
        ClientSession session(std::move(host));
        code = sendAll(session, requests, streams);
    }
    if (trace.isComplete()) {
        return code;
    }
    streams.err << "marrowpress host: cannot write " << *options.trace << '\n';
    return ExitCode::kRunFailed;
}

}  // namespace

ExitCode runHost(const HostOptions& options, const Streams& streams) {
    try {
        return runChecked(options, streams);
    } catch (const ArgumentFault& fault) {
        streams.err << usageErrorText("host", fault.what());
        return ExitCode::kWrongUsage;
    }
}

}  // namespace marrowpress
