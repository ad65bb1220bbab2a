#pragma once

#include <string>

#include "runs/key_list.h"

namespace marrowpress {

/// In the chosen language: all definitions of `key`, a key of `list`, in the order in which they
/// were met, which of them counts, and why. Paths are shown as seen from `currentFolder`.
std::string keyExplanation(const KeyList& list, const ListedKey& key,
                           const std::string& currentFolder);

}  // namespace marrowpress
