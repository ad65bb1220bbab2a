#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>

#include "results/run_result.h"

/// Whether a run would give again what it gave the last time.
namespace marrowpress {

/// What a result has to be of, to count for a run. JSON objects, as in the result.
struct WantedRun {
    std::string request;
    std::string options;
    std::string versions;
};

/// Compares files with what results say of them. Each is looked at once, however many results it
/// is in.
class FileComparison {
public:
    /// Whether all is as it was when the run ended: what it read, what it missed, what it wrote.
    ///
    /// Size, times and inode tell that a file is the same; where one differs, what it holds does. A
    /// file that was changed in the tick of the clock in which the run began, or later, counts as
    /// changed: nobody knows what the run has read.
    bool isUpToDate(const RunResult& result, const WantedRun& wanted);

    /// Whether the dependency at that index is as the run has found it.
    bool isUnchanged(const RunResult& result, std::size_t index);

private:
    bool isUnchanged(const std::string& path, const std::optional<KnownFile>& known);
    bool isSame(const std::string& path, const KnownFile& known, bool isStampEnough);
    const std::optional<FileStamp>& stampAt(const std::string& path);

    std::unordered_map<std::string, std::optional<FileStamp>> stamps_;
    std::unordered_map<std::string, std::optional<std::string>> digests_;
};

/// Remembers what the run has written besides its outputs: depfiles, reports.
///
/// @param file  Absolute.
void rememberReport(const std::string& file, ResultRun& run);

/// Whether the file is as that very run has written it.
bool isReportThere(const std::string& file, const ResultRun& run);

/// Whether the file was changed between the run's begin and end. A time still to come is the trace
/// of a clock that was set back, and says nothing.
bool wasTouchedDuring(const ResultRun& run, const FileStamp& stamp);

/// Whether a file that the run has read was changed since it began, so that the result may be of
/// neither state.
bool wasChangedMeanwhile(const RunResult& result);

}  // namespace marrowpress
