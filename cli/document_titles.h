#pragma once

#include <string>

namespace marrowpress {

/// The title of the document at an absolute path, with one blank for each white space; empty when
/// it has none, or cannot be read. No other file is read for it, neither a DTD nor what a key
/// stands for, and nothing behind the title.
///
/// @param id  Of the topic in it that is meant; empty for the first one.
std::string titleOfDocument(const std::string& path, const std::string& id = {});

}  // namespace marrowpress
