#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "findings/finding.h"
#include "results/file_stamp.h"

namespace marrowpress {

enum class ResultState : std::uint8_t {
    kClean,
    kFindings,  ///< All was done, and findings count.
    kFailed,
};

/// A file that a run has read, or has looked for. Kind and state are words, as `deps` has them.
struct ResultDependency {
    std::string file;  ///< Absolute.
    std::string kind;
    std::string state;
    FindingPlace from;                  ///< No file for what the request names.
    std::optional<std::string> sha256;  ///< Empty for a file that is not there.
};

struct ResultOutput {
    std::string path;  ///< Absolute.
    std::optional<std::string> sha256;
};

/// How a file was found when its run was over.
struct KnownFile {
    FileStamp stamp;
    std::string xxh128;  ///< Empty when nobody knows what the run has met.
};

/// Of a file that was another one, or was not there, at some time of the run. None is like it.
inline KnownFile unknownFile() {
    return {};
}

/// What may differ from one run of a request to the next.
struct ResultRun {
    std::string plan;     ///< The digest of the plan; empty without one.
    std::string started;  ///< "2026-01-31T12:00:00Z"; empty for a run that never began.
    double seconds = 0;
    double cpuSeconds = 0;
    std::uint64_t memory = 0;  ///< Resident at most, in bytes.
    unsigned tries = 1;
    bool isMemoryShort = false;  ///< It failed for want of memory.
    std::int64_t begin = 0;      ///< `earliestStampFromNow` when the run began.
    std::int64_t end = 0;        ///< `latestStampUntilNow` when its outputs were there.
    /// Of the dependencies and then the outputs, in their order; empty where there is no file.
    std::vector<std::optional<KnownFile>> files;
    /// What else was written and can be made from no result, and what findings were compared with:
    /// by absolute path, its `xxh128`.
    std::map<std::string, std::string> reports;
    std::string folder;  ///< From which paths in findings count; empty when nobody has told.
    /// Of files that were only looked at, since something else would come to stand there: by
    /// absolute path; empty where there is none.
    std::map<std::string, std::optional<KnownFile>> places;
};

/// All that there is to tell of one run, for whoever was not there. Texts are UTF-8.
struct RunResult {
    std::string id;
    ResultState state = ResultState::kFailed;
    int exit = 1;                        ///< 128 + n after the signal n.
    std::optional<int> signal;           ///< That ended the run.
    std::string phase;                   ///< In which it ended too early; empty where it did not.
    std::optional<std::int32_t> status;  ///< The client's; empty without an answer.
    std::string request;                 ///< As a JSON object.
    std::string options;                 ///< What else the result depends on, as a JSON object.
    std::vector<Finding> findings;
    std::size_t topics = 0;
    std::size_t dropped = 0;  ///< Findings that were met when no more were kept.
    std::vector<ResultDependency> dependencies;
    std::vector<ResultOutput> outputs;
    std::optional<std::string> text;  ///< What was told, where that is what was asked for.
    std::string versions;             ///< Of the program and its libraries, as a JSON object.
    ResultRun run;
};

const char* stateName(ResultState state);

/// What a run that ended with `exit` has come to.
ResultState stateOfExit(int exit);

/// Numbers of findings for people, and the exit code.
FindingSummary summaryOf(const RunResult& result);

}  // namespace marrowpress
