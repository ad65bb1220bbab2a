#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/options.h"
#include "cli/output_folder.h"
#include "cli/publish_paths.h"

namespace marrowpress {

/// What a run is to be told of the place where its result comes to stand.
struct ResultPlace {
    std::filesystem::path folder;  ///< Absolute and normal; of the composite, or of the flat book.
    /// References begin at the folder, and not where each file stands.
    bool isOneFile;
};

/// What makes a result movable: references that lead on from each output, and copies of what these
/// show or play.
class MovableResult {
public:
    /// Makes the folder for copies, which goes again when none comes into it.
    MovableResult(const PublishOptions& options, const PublishPaths& paths, ResultPlace place);

    /// Why the run must not be started, as a sentence that names the argument; empty when it may.
    const std::optional<std::string>& fault() const noexcept { return fault_; }

    bool isWanted() const noexcept { return isWanted_; }

    /// To be called when the client has written `files`, in the order in which copies get their
    /// names. A signal removes those that are not finished.
    ///
    /// @throws FileFailure when a file can't be read or written. It stays as the client wrote it,
    ///         and so do those behind it.
    /// @return  The paths of the copies.
    std::vector<std::string> make(const std::vector<std::string>& files) const;

private:
    void openCopies(const PublishOptions& options, const PublishPaths& paths);

    bool isWanted_;
    std::filesystem::path sources_;
    ResultPlace place_;
    std::filesystem::path copiesPath_;  ///< Empty when nothing is to be copied.
    std::unique_ptr<OutputFolder> copiesFolder_;
    std::optional<std::string> fault_;
};

}  // namespace marrowpress
