#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "findings/collector.h"
#include "host/stand_in_host_options.h"
#include "host/typed_record.h"
#include "runs/run_clock.h"

namespace marrowpress {

/// What a run came to.
struct RunOutcome {
    std::optional<std::int32_t> status;  ///< Empty when the client gave no answer.
    bool hasUnwrittenDocument = false;
    std::optional<std::vector<std::string>> components;  ///< A flat book's, once it was published.
    bool hasBegun = false;                               ///< It has told something of its work.
    bool isFolderTaken = false;  ///< Another run wrote into the folder all the while.
    TypedValues answer;          ///< The client's; empty when it gave none.
};

/// How a request is sent.
struct RunSetting {
    std::string request;
    std::vector<std::string> catalogs;  ///< Empty: the default catalogs.
    /// Gets what the run meets; null for a run that nobody observes.
    FindingCollector* collector = nullptr;
    /// As `collector`, and before it.
    std::function<void(const Observation&)> watch = {};
    /// Gets the references that the run meets, among what `watch` gets.
    std::function<void(const Observation&)> watchReferences = {};
    /// Gets the path of each catalog that is looked for.
    std::function<void(const std::string&)> onCatalog = {};
    /// Measures what the run does, unless it is null.
    RunClock* clock = nullptr;
    /// Nobody wants an output: once all else is done the run ends, as if it had been written. For a
    /// run that `watch` looks at.
    bool endsBeforeOutput = false;
    /// Those of the host's session.
    std::vector<OpenDocument> openDocuments = {};
    /// Asked for a public identifier before the catalogs are.
    StandInHostOptions::PublicIdResolver resolvePublicId = {};
};

/// Who looks on while a run lasts. Every member may be left as it is.
struct RunSinks {
    /// Gets the text of each progress line of the client.
    StandInHostOptions::LineSink onProgress = {};
    /// Gets each report line of the client, in a run without a collector.
    StandInHostOptions::LineSink onReport = {};
    /// Gets what an observed run meets, after the setting's collector.
    StandInHostOptions::ObservationSink onObservation = {};
    /// Asked at each operation of the request whether the run is to end early, without an output.
    std::function<bool()> isInterrupted = {};
};

/// Why a run comes to nothing where another one does not end.
inline constexpr const char* kFolderIsTaken = "another run writes into the same folder";

/// Sends one request through the client module.
///
/// @throws std::runtime_error when the client cannot be started, std::system_error when the
///         catalogs cannot be read for want of descriptors or memory, and RunInterrupted when
///         `sinks` wanted the run to end.
RunOutcome runRequest(const RunSetting& setting, const RunSinks& sinks);

/// The paths of a flat book's components in the client's answer, in its order, each once. Empty
/// when the answer has no such list.
std::optional<std::vector<std::string>> componentsOf(const TypedValues& answer);

/// The sentence about a run that did not come to its end; empty when it did.
std::optional<std::string> findStatusFault(const RunOutcome& outcome);

/// Makes a finding of a run that failed, unless one says why.
///
/// @param map, output  Absolute; what the run was asked to read and to write.
void addFailure(const RunOutcome& outcome, const std::string& map, const std::string& output,
                FindingCollector& collector);

/// Makes a finding of a file that the run should have written.
void addUnwritten(const std::string& path, const std::string& reason, FindingCollector& collector);

}  // namespace marrowpress
