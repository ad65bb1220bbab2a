#include "results/up_to_date.h"

#include <algorithm>

#include "results/file_digest.h"

namespace marrowpress {
namespace {

std::int64_t lastTouch(const FileStamp& stamp) {
    return std::max(stamp.modified, stamp.changed) + uncertaintyOf(stamp);
}

}  // namespace

const std::optional<FileStamp>& FileComparison::stampAt(const std::string& path) {
    const auto [entry, isNew] = stamps_.try_emplace(path);
    if (isNew) {
        entry->second = stampOf(path);
    }
    return entry->second;
}

bool FileComparison::isSame(const std::string& path, const KnownFile& known, bool isStampEnough) {
    const std::optional<FileStamp>& stamp = stampAt(path);
    if (!stamp || stamp->size != known.stamp.size) {
        return false;
    }
    if (isStampEnough && *stamp == known.stamp) {
        return true;
    }
    const auto [entry, isNew] = digests_.try_emplace(path);
    if (isNew) {
        entry->second = quickDigestOf(path);
    }
    return entry->second == known.xxh128;
}

bool FileComparison::isUpToDate(const RunResult& result, const WantedRun& wanted) {
    if (result.request != wanted.request || result.options != wanted.options ||
        result.versions != wanted.versions || wasChangedMeanwhile(result)) {
        return false;
    }
    const std::vector<std::optional<KnownFile>>& known = result.run.files;
    for (std::size_t index = 0; index < result.dependencies.size(); ++index) {
        if (!isUnchanged(result, index)) {
            return false;
        }
    }
    for (const auto& [path, place] : result.run.places) {
        if (!isUnchanged(path, place)) {
            return false;
        }
    }
    for (std::size_t index = 0; index < result.outputs.size(); ++index) {
        const std::optional<KnownFile>& output = known[result.dependencies.size() + index];
        // It was written shortly before the end: somebody else may have written within that tick.
        const bool isOld = output && lastTouch(output->stamp) + kFileClockTick < result.run.end;
        if (!output || !isSame(result.outputs[index].path, *output, isOld)) {
            return false;
        }
    }
    return true;
}

bool FileComparison::isUnchanged(const RunResult& result, std::size_t index) {
    return isUnchanged(result.dependencies[index].file, result.run.files[index]);
}

bool FileComparison::isUnchanged(const std::string& path, const std::optional<KnownFile>& known) {
    return known ? isSame(path, *known, /*isStampEnough=*/true) : !stampAt(path).has_value();
}

void rememberReport(const std::string& file, ResultRun& run) {
    if (std::optional<std::string> digest = quickDigestOf(file)) {
        run.reports[file] = *std::move(digest);
    }
}

bool isReportThere(const std::string& file, const ResultRun& run) {
    const auto known = run.reports.find(file);
    return known != run.reports.end() && quickDigestOf(file) == known->second;
}

bool wasTouchedDuring(const ResultRun& run, const FileStamp& stamp) {
    const std::int64_t uncertainty = uncertaintyOf(stamp);
    const auto isDuring = [&run, uncertainty](std::int64_t time) {
        return time + uncertainty >= run.begin && time <= run.end;
    };
    return isDuring(stamp.changed) || isDuring(stamp.modified);
}

bool wasChangedMeanwhile(const RunResult& result) {
    for (std::size_t index = 0; index < result.dependencies.size(); ++index) {
        const std::optional<KnownFile>& file = result.run.files[index];
        if (file && (file->xxh128.empty() || wasTouchedDuring(result.run, file->stamp))) {
            return true;
        }
    }
    return false;
}

}  // namespace marrowpress
