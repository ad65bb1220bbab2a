#pragma once

#include <cstdint>
#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

/// The selections of elements that refer to media.
namespace marrowpress {

enum class MultimediaNodeType : std::int32_t {
    MultimediaNodeNone = -1,
    MultimediaNodeObject = 0,
    MultimediaNodeParam = 1,
    MultimediaNodeRejected = 2,
};

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
