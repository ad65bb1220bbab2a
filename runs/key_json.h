#pragma once

#include <string>
#include <vector>

#include "runs/key_list.h"

namespace marrowpress {

/// "effective": in formats for programs.
const char* nameOf(KeyState state);

/// An object a line for each key. `keys` are those of `list` that are wanted. Paths are absolute.
std::string keyJson(const KeyList& list, const std::vector<const ListedKey*>& keys);

}  // namespace marrowpress
