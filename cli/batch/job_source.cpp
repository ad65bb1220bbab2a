#include "cli/batch/job_source.h"

#include <fnmatch.h>

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "cli/batch/job_file.h"
#include "host/file_text.h"

namespace marrowpress {
namespace {

/// A variable by which an engine tells a process which of its jobs it is.
struct IndexVariable {
    const char* name;
    std::size_t first;  ///< The number of the first one.
};

constexpr IndexVariable kIndexVariables[] = {{"SLURM_ARRAY_TASK_ID", 0},
                                             {"JOB_COMPLETION_INDEX", 0},
                                             {"PARALLEL_SEQ", 1},
                                             {"CI_NODE_INDEX", 1}};

std::string textOfSource(const std::string& file) {
    try {
        return file == kStandardOutput ? readStandardInput(kMostInputBytes)
                                       : readFile(file, kMostInputBytes);
    } catch (const std::system_error& fault) {
        throw BatchFault(std::string("FILE: ") + fault.what());
    }
}

std::string shownSource(const std::string& file) {
    return file == kStandardOutput ? "standard input" : file;
}

std::optional<std::size_t> numberIn(std::string_view text) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole ? std::optional(number) : std::nullopt;
}

/// The number that an engine's variable gives, from 0.
std::size_t indexOfEnvironment() {
    std::string found;
    std::size_t index = 0;
    for (const IndexVariable& variable : kIndexVariables) {
        const char* const value = std::getenv(variable.name);
        if (!value) {
            continue;
        }
        if (!found.empty()) {
            throw BatchFault("--index env: both " + found + " and " + variable.name + " are set");
        }
        found = variable.name;
        const std::optional<std::size_t> number = numberIn(value);
        if (!number || *number < variable.first) {
            throw BatchFault("--index env: " + found + " is no number from " +
                             std::to_string(variable.first) + " on: " + value);
        }
        index = *number - variable.first;
    }
    if (found.empty()) {
        throw BatchFault(
            "--index env: none of SLURM_ARRAY_TASK_ID, JOB_COMPLETION_INDEX, "
            "PARALLEL_SEQ and CI_NODE_INDEX is set");
    }
    return index;
}

std::vector<std::size_t> indexedJob(const std::string& wanted, std::size_t count) {
    const std::optional<std::size_t> index =
        wanted == "env" ? indexOfEnvironment() : numberIn(wanted);
    if (!index) {
        throw BatchFault("--index: neither a number from 0 on nor env: " + wanted);
    }
    if (*index >= count) {
        throw BatchFault("--index: there is no job " + std::to_string(*index) + "; the plan has " +
                         std::to_string(count) + ", from 0 on");
    }
    return {*index};
}

std::vector<std::size_t> shardJobs(const std::string& wanted, std::size_t count) {
    const std::size_t slash = wanted.find('/');
    const std::optional<std::size_t> shard = numberIn(std::string_view(wanted).substr(0, slash));
    const std::optional<std::size_t> shards =
        slash == std::string::npos ? std::nullopt
                                   : numberIn(std::string_view(wanted).substr(slash + 1));
    if (!shard || !shards || *shard < 1 || *shard > *shards) {
        throw BatchFault("--shard: this is to be I/N with I from 1 to N: " + wanted);
    }
    std::vector<std::size_t> indexes;
    for (std::size_t index = *shard - 1; index < count; index += *shards) {
        indexes.push_back(index);
    }
    return indexes;
}

bool isWanted(const BatchOptions& options, const Job& job) {
    const auto matches = [&job](const std::string& pattern) {
        return fnmatch(pattern.c_str(), job.id.c_str(), 0) == 0;
    };
    const auto hasTag = [&job](const std::string& tag) {
        return std::find(job.tags.begin(), job.tags.end(), tag) != job.tags.end();
    };
    return (options.idPatterns.empty() ||
            std::any_of(options.idPatterns.begin(), options.idPatterns.end(), matches)) &&
           (options.tags.empty() || std::any_of(options.tags.begin(), options.tags.end(), hasTag));
}

bool isForCheck(const BatchOptions& options) {
    return options.action == BatchAction::kCheck || options.isPlanForCheck;
}

/// Leaves out what cannot be published, and tells its ids with their transtypes.
void passOver(std::vector<Job>& jobs, const BatchOptions& options, const std::string& shown,
              std::vector<std::string>& passedOver) {
    std::erase_if(jobs, [&](const Job& job) {
        const bool isOther = !canBePublished(job, options.formats);
        if (isOther) {
            passedOver.push_back(job.id + " (" + job.transtype + ")");
        }
        return isOther;
    });
    if (jobs.empty() && !passedOver.empty()) {
        throw BatchFault(shown + ": no deliverable has the transtype composite or flatbook: " +
                         boost::algorithm::join(passedOver, ", ") +
                         "; `--as` says what to make of another one, and `batch check` checks all");
    }
}

}  // namespace

Plan planOf(const BatchOptions& options, std::vector<std::string>& passedOver) {
    const std::string text = textOfSource(options.file);
    const std::string shown = shownSource(options.file);
    try {
        if (isPlan(text)) {
            return parsePlan(text, shown);
        }
        if (options.action == BatchAction::kRun) {
            throw PlanError(shown + ": this is no plan");
        }
        std::vector<Job> jobs =
            readJobFile({text, options.file, shown, options.outputFolder, options.formats});
        if (options.action != BatchAction::kList && !isForCheck(options)) {
            passOver(jobs, options, shown, passedOver);
        }
        return makePlan(std::move(jobs), isForCheck(options), options.catalogs,
                        options.diagnostics);
    } catch (const PlanError& fault) {
        throw BatchFault(fault.what());
    } catch (const JobFileError& fault) {
        throw BatchFault(fault.what());
    }
}

bool isPlanFile(const std::string& path) {
    return path != kStandardOutput && isPlan(textOfSource(path));
}

Plan readPlan(const std::string& path) {
    BatchOptions options;
    options.action = BatchAction::kRun;
    options.file = path;
    std::vector<std::string> passedOver;
    return planOf(options, passedOver);
}

std::vector<std::size_t> selectedJobs(const BatchOptions& options, const Plan& plan) {
    const std::size_t count = plan.jobs.size();
    if (!options.index.empty()) {
        return indexedJob(options.index, count);
    }
    if (!options.shard.empty()) {
        return shardJobs(options.shard, count);
    }
    std::vector<std::size_t> indexes;
    for (std::size_t index = 0; index < count; ++index) {
        if (isWanted(options, plan.jobs[index])) {
            indexes.push_back(index);
        }
    }
    if (indexes.empty()) {
        throw BatchFault(count == 0 ? options.file + ": there are no jobs"
                                    : "--select, --tag: no job is selected");
    }
    return indexes;
}

}  // namespace marrowpress
