#pragma once

#include <string>

#include "cli/key_list.h"
#include "cli/page_files.h"

namespace marrowpress {

/// The part of the page that shows each key with its definitions and uses.
std::string keysPart(const KeyList& keys, const PageFiles& files);

}  // namespace marrowpress
