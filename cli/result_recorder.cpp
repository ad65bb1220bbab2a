#include "cli/result_recorder.h"

#include <sys/resource.h>

#include <algorithm>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <ctime>
#include <utility>

#include "cli/publish_request.h"
#include "cli/version_text.h"
#include "findings/json_values.h"
#include "findings/severity.h"
#include "results/file_digest.h"
#include "results/up_to_date.h"
#include "runs/dependency_json.h"
#include "runs/public_ids.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

json::object severityMembers(const std::map<std::string, Severity>& severities) {
    json::object members;
    for (const auto& [id, severity] : severities) {
        members[id] = severityName(severity);
    }
    return members;
}

json::array pathMembers(const std::vector<fs::path>& paths) {
    return jsonArray(paths, [](const fs::path& path) { return jsonText(path.string()); });
}

json::value optionalPath(const std::optional<std::string>& path) {
    return path ? jsonText(fs::absolute(*path).string()) : json::value();
}

std::string utcNow() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&now, &parts);
    char text[sizeof "2026-01-31T12:00:00Z"];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

double secondsOf(const timeval& time) {
    constexpr double kMicroseconds = 1e6;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / kMicroseconds;
}

void measure(ResultRun& run) {
    constexpr std::uint64_t kKilobyte = 1024;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    run.cpuSeconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
    run.memory = static_cast<std::uint64_t>(usage.ru_maxrss) * kKilobyte;
}

/// The digest for the result, and what is to be remembered beside it.
std::optional<std::string> addFile(const std::string& path, ResultRun& run) {
    std::optional<FileDigest> digest = digestOf(path);
    if (!digest) {
        run.files.emplace_back();
        return std::nullopt;
    }
    run.files.push_back(KnownFile{digest->stamp, std::move(digest->xxh128)});
    return std::move(digest->sha256);
}

}  // namespace

RunIdentity identityOf(const std::string& command, const PublishOptions& options,
                       const PublishPaths& paths, std::size_t ownFilters, const std::string& wish) {
    const bool isOneFilter = paths.filters.size() == 1;
    const DiagnosticsOptions& diagnostics = options.diagnostics;
    const bool isGerman =
        diagnostics.language == Language::kGerman ||
        (diagnostics.language == Language::kAuto && environmentLanguage() == Language::kGerman);
    json::object members{{"command", command},
                         {"filters", pathMembers(paths.filters)},
                         {"ownFilters", ownFilters},
                         {"allowMissingFilter", options.allowsMissingFilter},
                         {"catalogs", pathMembers(catalogFiles(options.catalogs))},
                         {"relative", options.isRelative},
                         {"media", jsonTextOrNull(options.mediaFolder.value_or(""))},
                         {"findings", diagnostics.format != DiagnosticsFormat::kNone},
                         {"failOn", wordOf(diagnostics.failOn)},
                         {"severities", severityMembers(diagnostics.severities)},
                         {"baseline", optionalPath(diagnostics.baseline)},
                         {"all", diagnostics.showsAll},
                         {"language", isGerman ? "de" : "en"}};
    if (!wish.empty()) {
        members["wish"] = jsonText(wish);
    }
    return {buildRequest(options, paths,
                         isOneFilter ? std::optional(paths.filters.front()) : std::nullopt),
            json::serialize(members)};
}

std::string versionsText() {
    json::object members;
    for (const auto& [name, version] : libraryVersions()) {
        members[name] = version;
    }
    return json::serialize(members);
}

void RunRecording::demandSameSources(const ResultRecorder& recorder) const {
    if (isMadeAgain && recorder.areSourcesChanged()) {
        throw SourcesChanged();
    }
}

ResultRecorder::ResultRecorder(std::string id, RunIdentity identity, const PublishPaths& paths)
    : dependencies_(paths.map), filters_(paths.filters) {
    result_.id = std::move(id);
    result_.request = std::move(identity.request);
    result_.options = std::move(identity.options);
    result_.versions = versionsText();
    result_.run.started = utcNow();
    result_.run.begin = earliestStampFromNow();
    meet(paths.map.string());
    for (const fs::path& filter : filters_) {
        meet(filter.string());
    }
}

void ResultRecorder::meet(const std::string& path) {
    const auto [entry, isNew] = met_.try_emplace(path);
    if (isNew) {
        entry->second = stampOf(path);
    }
}

bool ResultRecorder::isAnother(const std::string& path) const {
    const auto met = met_.find(path);
    return met != met_.end() && met->second != stampOf(path);
}

void ResultRecorder::addCatalog(const std::string& path) {
    dependencies_.addCatalog(path);
    meet(fs::path(path).lexically_normal().string());
}

void ResultRecorder::observe(const Observation& observation) {
    dependencies_.observe(observation);
    switch (observation.kind) {
        case ObservationKind::kPhase:
            phase_ = observation.target;
            break;
        case ObservationKind::kFileReference:
        case ObservationKind::kEntity:
        case ObservationKind::kDocumentRead:
        case ObservationKind::kDocumentUnread:
            meet(observation.target);
            break;
        default:
            break;
    }
    result_.run.isMemoryShort |= observation.kind == ObservationKind::kRunFailed &&
                                 std::string_view(observation.reason) == kNotEnoughMemory;
}

void ResultRecorder::finishRun(std::optional<std::int32_t> status) {
    dependencies_.addProfiles(filters_);
    dependencies_.finish();
    result_.status = status;
}

void ResultRecorder::lookAt(const std::set<std::string>& places) {
    for (const std::string& path : places) {
        const std::optional<FileDigest> digest = digestOf(path);
        result_.run.places[path] =
            digest ? std::optional(KnownFile{digest->stamp, digest->xxh128}) : std::nullopt;
    }
}

bool ResultRecorder::areSourcesChanged() const {
    ResultRun untilNow;
    untilNow.begin = result_.run.begin;
    untilNow.end = latestStampUntilNow();
    const std::vector<Dependency>& files = dependencies_.files();
    return std::any_of(files.begin(), files.end(), [&](const Dependency& file) {
        const std::optional<FileStamp> stamp = stampOf(file.file);
        return isAnother(file.file) || (stamp && wasTouchedDuring(untilNow, *stamp));
    });
}

RunResult ResultRecorder::finish(const std::vector<Finding>& findings,
                                 const FindingSummary& summary,
                                 const std::vector<std::string>& outputs) {
    result_.exit = summary.exit;
    result_.state = stateOfExit(summary.exit);
    result_.phase = result_.status == 0 ? std::string() : phase_;
    result_.findings = findings;
    result_.topics = summary.topics;
    result_.dropped = summary.dropped;
    for (const Dependency& file : dependencies_.files()) {
        result_.dependencies.push_back({file.file, nameOf(file.kind), nameOf(file.state), file.from,
                                        addFile(file.file, result_.run)});
        if (isAnother(file.file)) {
            result_.run.files.back() = unknownFile();
        }
    }
    for (const std::string& path : outputs) {
        result_.outputs.push_back({path, addFile(path, result_.run)});
    }
    result_.run.end = latestStampUntilNow();
    result_.run.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    measure(result_.run);
    return std::move(result_);
}

}  // namespace marrowpress
