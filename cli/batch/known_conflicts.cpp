#include "cli/batch/known_conflicts.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>

#include "cli/batch/job_results.h"
#include "cli/file_place.h"
#include "cli/publish_paths.h"
#include "results/up_to_date.h"

namespace marrowpress {
namespace {

/// Knows whether what results tell of conflicts is still true.
class ConflictCheck {
public:
    /// @param found  All that may be asked for.
    ConflictCheck(const Plan& plan, const std::vector<std::size_t>& jobs,
                  const ResultFolder& results, const std::vector<JobConflict>& found)
        : plan_(plan), results_(results) {
        for (const std::size_t index : jobs) {
            jobOf_[plan.jobs[index].id] = &plan.jobs[index];
        }
        for (const JobConflict& conflict : found) {
            inQuestion_.insert(conflict.path);
        }
    }

    bool isTrue(const JobConflict& conflict) {
        const auto writes = [&](const std::string& id) {
            return isAskedToWrite(id, conflict.path) || holds(id);
        };
        return writes(conflict.writer) &&
               (conflict.isRead ? holds(conflict.other) : writes(conflict.other));
    }

private:
    /// What a flat book writes the run alone knows.
    bool isAskedToWrite(const std::string& id, const std::string& path) const {
        const PublishOptions& options = jobOf_.at(id)->options;
        return !isFlatBook(options) && placeOf(resolvePublishPaths(options).output) == path;
    }

    bool holds(const std::string& id) {
        const auto [entry, isNew] = holds_.try_emplace(id);
        if (isNew) {
            entry->second = lookAt(id);
        }
        return entry->second;
    }

    bool lookAt(const std::string& id) {
        const std::optional<RunResult> result = results_.find(id);
        const WantedRun wanted = wantedRunOf(plan_, *jobOf_.at(id));
        if (!result || result->request != wanted.request || result->options != wanted.options) {
            return false;
        }
        for (std::size_t index = 0; index < result->dependencies.size(); ++index) {
            if (!inQuestion_.contains(result->dependencies[index].file) &&
                !files_.isUnchanged(*result, index)) {
                return false;
            }
        }
        return true;
    }

    const Plan& plan_;
    const ResultFolder& results_;
    std::map<std::string, const Job*> jobOf_;
    std::set<std::string> inQuestion_;
    std::map<std::string, bool> holds_;
    FileComparison files_;
};

auto keyOf(const JobConflict& conflict) {
    return std::tie(conflict.path, conflict.isRead, conflict.writer, conflict.other);
}

}  // namespace

std::vector<JobConflict> findKnownConflicts(const Plan& plan, const std::vector<std::size_t>& jobs,
                                            const std::vector<std::size_t>& withResults,
                                            const ResultFolder& results) {
    JobConflicts conflicts;
    for (const std::size_t index : jobs) {
        conflicts.add(plan.jobs[index]);
    }
    const std::vector<JobConflict> asked = conflicts.find();
    for (const std::size_t index : withResults) {
        if (const std::optional<RunResult> result = results.find(plan.jobs[index].id)) {
            conflicts.add(*result);
        }
    }
    std::vector<JobConflict> found = conflicts.find();
    ConflictCheck check(plan, jobs, results, found);
    std::erase_if(found, [&](const JobConflict& conflict) {
        const bool isAsked = std::any_of(asked.begin(), asked.end(), [&](const JobConflict& other) {
            return keyOf(other) == keyOf(conflict);
        });
        return !isAsked && !check.isTrue(conflict);
    });
    return found;
}

}  // namespace marrowpress
