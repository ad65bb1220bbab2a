#pragma once

#include <string>
#include <vector>

#include "runs/dependency_list.h"

/// What make and ninja are told of a run, as compilers tell them of theirs.
namespace marrowpress {

/// A file's name as rules have it.
std::string makeName(const std::string& name);

/// The same for `include`, to which a colon means nothing, so that it is not to be escaped there.
std::string makeIncludeName(const std::string& name);

/// A rule without a recipe: `target` is to be made again when one of `prerequisites` has changed.
/// Each of these is a target, too, so that one that is gone is no error. The names are escaped; one
/// with a line end, `;` or `|`, which no rule can name, is left out.
std::string makeRule(const std::string& target, const std::vector<std::string>& prerequisites);

/// The files of the list that are there: make and ninja would build for ever for one that is not.
/// Those below `currentFolder` are named as seen from there, and all others by their whole path.
std::vector<std::string> prerequisitesOf(const DependencyList& list,
                                         const std::string& currentFolder);

}  // namespace marrowpress
