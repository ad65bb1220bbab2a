#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "cli/removal_on_signal.h"

namespace marrowpress {

/// What names the folder of a result.
inline constexpr const char* kOutputArgument = "--output";

/// Why this user may not make a file in `folder`, which exists; no error when it may. That a disk
/// is full, or mounted for reading, is for whoever writes to find out.
std::error_code findWriteError(const std::filesystem::path& folder);

/// Why an `OutputFolder` at `path` would have a fault: the same sentence, and nothing is made.
std::optional<std::string> findOutputFolderFault(const std::filesystem::path& path,
                                                 const std::string& shown,
                                                 const std::string& argument = kOutputArgument);

/// The folder in which the file at `given` stands, for a sentence about it.
std::string shownFolderOf(const std::string& given);

/// The folder that a run writes to. It is made when it is not there, and so are those above it;
/// those that are still empty at the end, or when a signal comes, are removed again.
class OutputFolder {
public:
    /// `path` must be absolute and normal; `shown` and `argument` name it in a fault.
    OutputFolder(const std::filesystem::path& path, const std::string& shown,
                 const std::string& argument = kOutputArgument);
    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;
    ~OutputFolder();

    /// Why the run could not write, as a sentence that names the argument; empty when it can.
    const std::optional<std::string>& fault() const noexcept { return fault_; }

private:
    std::error_code make(const std::filesystem::path& path);

    /// A folder that was made, and its removal.
    struct Made {
        std::filesystem::path path;
        std::unique_ptr<RemovalOnSignal> removal;
    };

    std::vector<Made> made_;  ///< The uppermost first.
    std::optional<std::string> fault_;
};

}  // namespace marrowpress
