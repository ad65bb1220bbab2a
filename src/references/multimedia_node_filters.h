#pragma once

#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

#include "references/multimedia_references.h"

/// The selections of elements that refer to media.
namespace marrowpress {

/// Selects what refers to media: an object by "data", or a param named "src" or "poster" by its
/// "value".
class MultimediaRefAttrContainingNodeFilter final : public xercesc::DOMNodeFilter {
public:
    FilterAction acceptNode(const xercesc::DOMNode* node) const override;
    MultimediaNodeType getType(const xercesc::DOMNode* node) const;
};

/// Selects what refers to media by a key: an object by "datakeyref", or a param of any name by
/// "keyref".
class MultimediaKeyrefAttrContainingNodeFilter final : public xercesc::DOMNodeFilter {
public:
    FilterAction acceptNode(const xercesc::DOMNode* node) const override;
    MultimediaNodeType getType(const xercesc::DOMNode* node) const;
};

}  // namespace marrowpress
