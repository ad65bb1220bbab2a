#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/report_files.h"
#include "cli/scratch_folder.h"
#include "findings/collector.h"
#include "findings/profile.h"
#include "findings/profile_remarks.h"

namespace marrowpress {

/// The DITAVAL files of a run, read before it, and as the one file that the client takes.
class ProfileSet {
public:
    /// Reads each file, in its order, and merges several into a private one.
    ///
    /// @param isOptional  One that cannot be used is done without, and is no fault.
    /// @throws ScratchError as `ScratchFolder` does.
    ProfileSet(const std::vector<NamedPath>& files, bool isOptional);

    /// Why the run must not be started, as a sentence that names the argument; empty when it may.
    const std::optional<std::string>& fault() const noexcept { return fault_; }

    /// What the client is handed; nothing without a profile.
    const std::optional<std::filesystem::path>& file() const noexcept { return file_; }

    /// The files as they were named, absolute.
    const std::vector<std::string>& names() const noexcept { return names_; }

    /// Adds what is to be said of the files: what DITA doesn't know, what has no effect, and the
    /// rules that match nothing of what the run met.
    void addFindings(FindingCollector& collector) const;

private:
    void read(const NamedPath& file, bool isOptional);
    void merge();

    std::optional<std::string> fault_;
    std::optional<std::filesystem::path> file_;
    std::vector<std::string> names_;
    std::vector<Profile> profiles_;
    std::vector<ProfileRule> rules_;
    std::vector<Finding> unusable_;  ///< Those that a merge leaves out.
    std::unique_ptr<ScratchFolder> scratch_;
};

}  // namespace marrowpress
