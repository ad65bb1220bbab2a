#pragma once

#include <filesystem>
#include <optional>

#include "cli/removal_on_signal.h"
#include "runs/private_folder.h"

namespace marrowpress {

/// A private folder that is removed as well when SIGHUP, SIGINT, SIGQUIT or SIGTERM ends the
/// process.
class ScratchFolder {
public:
    /// @throws ScratchError as `PrivateFolder` does.
    ScratchFolder();

    /// Absolute, and readable by the client.
    const std::filesystem::path& path() const noexcept { return folder_->path(); }

private:
    // Ends after the folder, which a signal may interrupt.
    std::optional<RemovalOnSignal> removal_;
    std::optional<PrivateFolder> folder_;
};

}  // namespace marrowpress
