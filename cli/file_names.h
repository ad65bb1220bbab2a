#pragma once

#include <string>
#include <vector>

namespace marrowpress {

/// A name for each of the paths, as short as it can be while no two are the same: without folders
/// and ending, else with the ending, else with as many folders as it takes. Fit for ids, as
/// `htmlName` makes them, and without blanks or commas.
std::vector<std::string> shortNames(const std::vector<std::string>& paths);

}  // namespace marrowpress
