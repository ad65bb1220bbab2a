#pragma once

#include <span>
#include <string>

#include "cli/exclusion_list.h"

namespace marrowpress {

/// The title of the document at an absolute path, with one blank for each white space; empty when
/// it has none, or cannot be read. No other file is read for it, neither a DTD nor what a key
/// stands for, whose name is shown, and nothing behind the title.
///
/// @param id       Of the topic in it that is meant; empty for the first one.
/// @param leftOut  What the profile takes out of the document.
std::string titleOfDocument(const std::string& path, const std::string& id = {},
                            std::span<const ExcludedElement> leftOut = {});

}  // namespace marrowpress
