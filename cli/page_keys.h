#pragma once

#include <string>

#include "cli/page_files.h"
#include "runs/key_list.h"

namespace marrowpress {

/// The part of the page that shows each key with its definitions and uses.
std::string keysPart(const KeyList& keys, const PageFiles& files);

}  // namespace marrowpress
