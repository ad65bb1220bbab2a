#include "cli/batch/result_places.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "cli/batch/batch_reports.h"
#include "cli/file_place.h"
#include "cli/output_folder.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

constexpr const char* kResultExtension = ".json";

/// The results of a plan, by the files that they are renamed to. A link in a result's place is
/// replaced itself, and not what it leads to.
class ResultPlaces {
public:
    ResultPlaces(const Plan& plan, const ResultFolder& results)
        // With or without a slash at its end.
        : folder_((placeOf(results.path()) / "").parent_path()) {
        for (const Job& job : plan.jobs) {
            idOf_.emplace(results.pathOf(job.id).filename().string(), &job.id);
        }
    }

    /// What is wrong when that file is in a result's place.
    std::optional<std::string> findFault(const std::string& file, const char* what) {
        // A plan has the same files for many of its jobs, and few of them have such a name.
        if (fs::path(file).extension() != kResultExtension || !seen_.insert(file).second) {
            return std::nullopt;
        }
        const fs::path path = fs::absolute(file);
        for (const fs::path& place :
             {placeOf(path), placeOf(path.parent_path()) / path.filename()}) {
            const auto result = idOf_.find(place.filename().string());
            if (result != idOf_.end() && place.parent_path() == folder_) {
                return "--results: the result of `" + *result->second +
                       "` would take the place of " + file + ", which is " + what +
                       "; choose another folder";
            }
        }
        return std::nullopt;
    }

private:
    fs::path folder_;
    std::map<std::string, const std::string*> idOf_;  ///< By the names of their files.
    std::set<std::string> seen_;
};

std::optional<std::string> findFaultOfJob(ResultPlaces& places, const Job& job, bool isCheck) {
    for (const std::string& source : job.sources) {
        if (std::optional<std::string> fault = places.findFault(source, "FILE")) {
            return fault;
        }
    }
    for (const std::string& filter : job.options.filters) {
        if (std::optional<std::string> fault = places.findFault(filter, "a filter")) {
            return fault;
        }
    }
    if (std::optional<std::string> fault = places.findFault(job.options.map, "a map")) {
        return fault;
    }
    return isCheck ? std::nullopt : places.findFault(job.options.output, "an output");
}

std::optional<std::string> findFileFault(const BatchOptions& options, const Plan& plan,
                                         const ResultFolder& results) {
    ResultPlaces places(plan, results);
    if (options.file != kStandardOutput) {
        if (std::optional<std::string> fault = places.findFault(options.file, "FILE")) {
            return fault;
        }
    }
    for (const Job& job : plan.jobs) {
        if (std::optional<std::string> fault = findFaultOfJob(places, job, plan.isCheck)) {
            return fault;
        }
    }
    return std::nullopt;
}

std::optional<std::string> findPageFault(const std::string& folder, const Plan& plan) {
    const auto found = std::find_if(plan.jobs.begin(), plan.jobs.end(), [](const Job& job) {
        return job.id + ".html" == kIndexPageName;
    });
    if (found != plan.jobs.end()) {
        return "--report: the page of `" + found->id + "` would have the place of the index, " +
               kIndexPageName + "; give the job another id";
    }
    return findOutputFolderFault(fs::absolute(folder).lexically_normal(), folder, "--report");
}

}  // namespace

std::optional<std::string> findResultPlaceFault(const BatchOptions& options, const Plan& plan,
                                                const ResultFolder& results) {
    const BatchAction action = options.action;
    const bool areOnlyRead = action == BatchAction::kPlan || action == BatchAction::kMerge;
    if (!areOnlyRead) {
        if (std::optional<std::string> fault = findFileFault(options, plan, results)) {
            return fault;
        }
    }
    // What a script is for may run on another machine.
    if (!areOnlyRead && action != BatchAction::kEmit) {
        if (std::optional<std::string> fault =
                findOutputFolderFault(results.path(), options.results, "--results")) {
            return fault;
        }
    }
    return options.reports.pageFolder ? findPageFault(*options.reports.pageFolder, plan)
                                      : std::nullopt;
}

}  // namespace marrowpress
