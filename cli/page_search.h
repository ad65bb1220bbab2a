#pragma once

#include <string>
#include <utility>
#include <vector>

namespace marrowpress {

/// The value of a choice, which is a class of the rows that it leaves, and what it is called.
using SearchChoice = std::pair<std::string, std::string>;

/// The search of a part of the page. It is hidden until the page's script shows it.
///
/// @param part     The id of the part.
/// @param label    What is searched.
/// @param choices  Further ones behind that of all rows; may be empty.
std::string searchForm(const std::string& part, const std::string& label,
                       const std::vector<SearchChoice>& choices = {});

}  // namespace marrowpress
