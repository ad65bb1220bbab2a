#pragma once

#include <vector>
#include <xercesc/dom/DOMNode.hpp>

namespace marrowpress {

/// The children of `parent` as they are now, all kinds of node, in order: what is appended later,
/// by a copy into the very tree that is copied from, isn't among them.
inline std::vector<xercesc::DOMNode*> childrenOf(const xercesc::DOMNode& parent) {
    std::vector<xercesc::DOMNode*> children;
    for (xercesc::DOMNode* child = parent.getFirstChild(); child; child = child->getNextSibling()) {
        children.push_back(child);
    }
    return children;
}

}  // namespace marrowpress
