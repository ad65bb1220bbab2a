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

/// Whether a tree would nest deeper than that with a copy of `element` as a child of `parent`, an
/// element, a document or null. Each place that puts copies into a tree asks, for copies of copies
/// add up.
bool wouldNestTooDeeply(const xercesc::DOMNode* parent, const xercesc::DOMElement& element);

}  // namespace marrowpress
