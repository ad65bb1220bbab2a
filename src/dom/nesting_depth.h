#pragma once

#include <cstddef>
#include <xercesc/dom/DOMElement.hpp>

namespace marrowpress {

/// The deepest nesting of elements that is worked on. Copying and serialising are recursive in the
/// engine, and the host's thread may have no more than 1 MB of stack, which they use up at some
/// 8,000 levels.
inline constexpr std::size_t kDeepestNesting = 5000;

/// Whether elements below `root`, which may be null, nest deeper than that.
bool isNestedTooDeeply(const xercesc::DOMElement* root);

}  // namespace marrowpress
