#pragma once

#include <filesystem>

#include "cli/scratch_folder.h"
#include "cli/streams.h"

namespace marrowpress {

/// Where a composite is written that is to go to standard output: the client writes files only.
class StandardOutputComposite {
public:
    /// @throws ScratchError as `ScratchFolder` does.
    StandardOutputComposite() = default;

    /// No file is there yet; its folder is there, and lives as long as this object.
    const std::filesystem::path& path() const noexcept { return path_; }

    /// Copies what was written; false when that fails.
    [[nodiscard]] bool copyTo(const Streams& streams) const;

private:
    ScratchFolder folder_;
    std::filesystem::path path_ = folder_.path() / "composite.dita";
};

}  // namespace marrowpress
