#include "cli/batch/job_conflicts.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "cli/file_place.h"
#include "cli/publish_paths.h"

namespace marrowpress {
namespace {

void addOnce(std::vector<std::uint32_t>& numbers, std::uint32_t number) {
    if (std::find(numbers.begin(), numbers.end(), number) == numbers.end()) {
        numbers.push_back(number);
    }
}

}  // namespace

std::uint32_t JobConflicts::numberOf(const std::string& id) {
    const auto [entry, isNew] = numbers_.try_emplace(id, static_cast<std::uint32_t>(ids_.size()));
    if (isNew) {
        ids_.push_back(id);
    }
    return entry->second;
}

void JobConflicts::add(const Job& job) {
    const std::uint32_t number = numberOf(job.id);
    const PublishPaths paths = resolvePublishPaths(job.options);
    addOnce(uses_[placeOf(paths.map).string()].readers, number);
    for (const std::filesystem::path& filter : paths.filters) {
        addOnce(uses_[placeOf(filter).string()].readers, number);
    }
    // The names of a flat book's files are known to the run alone.
    if (!job.options.output.empty() && !isFlatBook(job.options)) {
        addOnce(uses_[placeOf(paths.output).string()].writers, number);
    }
}

void JobConflicts::add(const RunResult& result) {
    const std::uint32_t number = numberOf(result.id);
    for (const ResultOutput& output : result.outputs) {
        addOnce(uses_[output.path].writers, number);
    }
    for (const ResultDependency& file : result.dependencies) {
        readings_.push_back({quickDigestOfText(file.file), number});
    }
}

/// With the readers of those files that some job writes.
std::unordered_map<std::string, JobConflicts::Use> JobConflicts::allUses() const {
    std::unordered_map<std::string, Use> uses = uses_;
    std::unordered_map<std::uint64_t, std::pair<TextDigest, Use*>> written;
    for (auto& [path, use] : uses) {
        if (!use.writers.empty()) {
            const TextDigest digest = quickDigestOfText(path);
            written[digest.low] = {digest, &use};
        }
    }
    for (const Reading& reading : readings_) {
        const auto use = written.find(reading.path.low);
        if (use != written.end() && use->second.first == reading.path) {
            addOnce(use->second.second->readers, reading.reader);
        }
    }
    return uses;
}

std::vector<JobConflict> JobConflicts::find() const {
    std::vector<JobConflict> found;
    for (const auto& [path, use] : allUses()) {
        if (use.writers.empty()) {
            continue;
        }
        const std::uint32_t writer = use.writers.front();
        for (const std::uint32_t other : use.writers) {
            if (other != writer) {
                found.push_back({ids_[writer], ids_[other], path, false});
            }
        }
        for (const std::uint32_t reader : use.readers) {
            if (reader != writer) {
                found.push_back({ids_[writer], ids_[reader], path, true});
            }
        }
    }
    const auto key = [](const JobConflict& conflict) {
        return std::tie(conflict.path, conflict.isRead, conflict.writer, conflict.other);
    };
    std::sort(found.begin(), found.end(),
              [&key](const JobConflict& left, const JobConflict& right) {
                  return key(left) < key(right);
              });
    return found;
}

std::optional<std::vector<std::string>> JobConflicts::orderOf(
    const std::vector<JobConflict>& conflicts) {
    std::map<std::string, std::set<std::string>> awaited;  // By reader.
    for (const JobConflict& conflict : conflicts) {
        if (conflict.isRead) {
            awaited[conflict.other].insert(conflict.writer);
        }
    }
    std::vector<std::string> order;
    while (!awaited.empty()) {
        const auto next = std::find_if(awaited.begin(), awaited.end(), [&](const auto& waiting) {
            return std::none_of(
                waiting.second.begin(), waiting.second.end(),
                [&](const std::string& writer) { return awaited.contains(writer); });
        });
        if (next == awaited.end()) {
            return std::nullopt;
        }
        order.push_back(next->first);
        awaited.erase(next);
    }
    return order;
}

std::string conflictText(const JobConflict& conflict) {
    return conflict.isRead ? "`" + conflict.other + "` reads what `" + conflict.writer +
                                 "` writes: " + conflict.path
                           : "`" + conflict.writer + "` and `" + conflict.other +
                                 "` write the same file: " + conflict.path;
}

}  // namespace marrowpress
