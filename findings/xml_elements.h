#pragma once

#include <string>

struct _xmlNode;

namespace marrowpress {

/// The element behind `element` in document order, its first child before its next sibling; null
/// behind the last one of the document.
_xmlNode* nextElement(_xmlNode& element);

/// The name as it stands in the tag, with its prefix.
std::string tagNameOf(const _xmlNode& element);

}  // namespace marrowpress
