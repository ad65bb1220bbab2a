#pragma once

#include <string>
#include <vector>

#include "runs/key_list.h"

/// Keys as texts: a line for each key, and behind it one for each further definition, with the
/// state of that.
namespace marrowpress {

/// `keys` are those of `list` that are wanted. Paths are shown as seen from `currentFolder`.
std::string keyTable(const KeyList& list, const std::vector<const ListedKey*>& keys,
                     const std::string& currentFolder);

/// With a first line that names the columns. Paths are absolute, texts are UTF-8.
std::string keyCsv(const KeyList& list, const std::vector<const ListedKey*>& keys);

}  // namespace marrowpress
