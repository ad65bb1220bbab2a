#include "cli/scratch_folder.h"

namespace marrowpress {

ScratchFolder::ScratchFolder() {
    const HeldSignals held;
    folder_.emplace();
    removal_.emplace(folder_->path().string());
}

}  // namespace marrowpress
