#pragma once

#include <string_view>

/// The files of cli/page/, which are built into the command.
namespace marrowpress {

extern const std::string_view kPageTemplate;  ///< page.html
extern const std::string_view kPageStyle;     ///< page.css
extern const std::string_view kPageScript;    ///< page.js

}  // namespace marrowpress
