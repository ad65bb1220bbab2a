#include "cli/watch/followed_files.h"

#include <algorithm>

#include "results/file_digest.h"
#include "results/up_to_date.h"

namespace marrowpress {
namespace {

/// Whether the file was as old as the clock can tell when it was looked at.
bool isSettled(const FileStamp& stamp, std::int64_t lookedAt) {
    return std::max(stamp.modified, stamp.changed) + uncertaintyOf(stamp) + kFileClockTick <
           lookedAt;
}

}  // namespace

void FollowedFiles::add(const RunResult& result) {
    for (const ResultOutput& output : result.outputs) {
        outputs_.insert(output.path);
        files_.erase(output.path);
    }
    for (std::size_t index = 0; index < result.dependencies.size(); ++index) {
        const std::string& path = result.dependencies[index].file;
        if (outputs_.contains(path)) {
            continue;
        }
        const std::optional<KnownFile>& found = result.run.files[index];
        Known known{found, !found || isSettled(found->stamp, result.run.end)};
        if (const std::optional<FileStamp> stamp = found ? std::nullopt : stampOf(path)) {
            // It cannot be read, and as long as that is so it has not changed.
            known = Known{KnownFile{*stamp, {}}, false};
        }
        if (found && wasTouchedDuring(result.run, found->stamp)) {
            // Nobody knows what the run has read: as if it had changed since.
            known.file = KnownFile{};
        }
        const auto [entry, isNew] = files_.try_emplace(path, std::move(known));
        const std::optional<KnownFile>& earlier = entry->second.file;
        if (!isNew && (earlier.has_value() != found.has_value() ||
                       (earlier && earlier->xxh128 != found->xxh128))) {
            // Of two runs one has met another file: again as if it had changed.
            entry->second.file = KnownFile{};
            entry->second.isStampEnough = false;
        }
    }
}

void FollowedFiles::add(const std::string& path, std::int64_t begin) {
    Known known;
    lookAgain(path, known);
    const std::optional<FileStamp> stamp = stampOf(path);
    ResultRun reader;
    reader.begin = begin;
    reader.end = latestStampUntilNow();
    // The digest may be of a later state than the stamp, as that may be than what was read.
    if (known.file && (stamp != known.file->stamp || wasTouchedDuring(reader, *stamp))) {
        known = Known{KnownFile{}, false};
    }
    files_.try_emplace(path, std::move(known));
}

bool FollowedFiles::lookAgain(const std::string& path, Known& known) {
    const std::int64_t now = latestStampUntilNow();
    const std::optional<FileStamp> stamp = stampOf(path);
    if (!stamp) {
        const bool isGone = known.file.has_value();
        known = Known{};
        return isGone;
    }
    if (known.file && known.isStampEnough && known.file->stamp == *stamp) {
        return false;
    }
    // One that cannot be read has no digest, which is one, too.
    std::string digest = quickDigestOf(path).value_or(std::string());
    const bool isChanged = !known.file || known.file->xxh128 != digest;
    known.file = KnownFile{*stamp, std::move(digest)};
    known.isStampEnough = isSettled(*stamp, now);
    return isChanged;
}

std::vector<std::string> FollowedFiles::takeChanges() {
    std::vector<std::string> changes;
    for (auto& [path, known] : files_) {
        if (lookAgain(path, known)) {
            changes.push_back(path);
        }
    }
    return changes;
}

std::vector<std::string> FollowedFiles::paths() const {
    std::vector<std::string> paths;
    paths.reserve(files_.size());
    for (const auto& [path, known] : files_) {
        paths.push_back(path);
    }
    return paths;
}

}  // namespace marrowpress
