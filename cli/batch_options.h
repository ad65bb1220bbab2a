#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/diagnostics_options.h"

namespace marrowpress {

/// Where a batch keeps its results unless told otherwise.
inline constexpr const char* kUsualResultFolder = "marrowpress-results";

/// What `marrowpress batch` and its parts are to do.
enum class BatchAction : std::uint8_t {
    kPublish,
    kCheck,
    kList,
    kPlan,
    kRun,
    kMerge,
    kEmit,
    kWatch
};

/// What runs the jobs of a plan in the place of a batch.
enum class Engine : std::uint8_t { kNinja, kMake, kParallel, kSlurm, kKubernetes, kGithub };

/// The merged reports of a batch. Paths stand as they were given.
struct BatchReports {
    std::optional<std::string> summary;  ///< One JSON object with all results.
    std::optional<std::string> sarif;
    std::optional<std::string> junit;
    std::optional<std::string> pageFolder;  ///< Pages of the jobs, and an index over them.
};

/// `marrowpress batch`: many deliverables. Paths stand as they were given.
struct BatchOptions {
    BatchAction action = BatchAction::kPublish;
    std::string
        file;  ///< Of jobs, or a plan; "-" is standard input. For merge the results' folder.
    std::optional<std::string> outputFolder;     ///< For project files.
    std::map<std::string, std::string> formats;  ///< By transtype: "composite", "flatbook".
    std::string results = kUsualResultFolder;
    std::vector<std::string> catalogs;
    DiagnosticsOptions diagnostics;
    std::vector<std::string> idPatterns;  ///< Empty: all jobs.
    std::vector<std::string> tags;        ///< Empty: all jobs.
    std::size_t width = 0;                ///< 0: as many as the machine can take.
    bool failsFast = false;
    bool resumes = false;
    bool retriesFailed = false;
    bool isDryRun = false;
    bool serializes = false;
    bool isNice = false;
    std::optional<std::chrono::seconds> longest;
    BatchReports reports;
    std::string plan;  ///< To be written, or that results are of.
    bool isPlanForCheck = false;
    std::string index;  ///< Of the only job to run: a number, or "env".
    std::string shard;  ///< "2/5"
    std::optional<std::string> depfile;
    Engine engine = Engine::kNinja;
    bool polls = false;       ///< For watch: without events of the system.
    bool isRepeated = false;  ///< By a watch: only what is run again is told.
};

}  // namespace marrowpress
