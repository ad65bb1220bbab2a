#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "references/multimedia_node_filters.h"
#include "references/node_filters.h"
#include "references/topic_ids.h"

/// Direct references, kept right while elements move from many files into few.
///
/// A subtree is normalised when it is taken from its file: its topics get new
/// ids, which a `TopicIdMap` learns, and its references become absolute. When
/// all pieces have come together, references to topics that the map knows are
/// rewritten to where these stand now; all others stay absolute.
namespace marrowpress {

/// Reads and writes one of the attributes that refer directly.
class DirectRefAttrHandler {
public:
    DirectRefAttrHandler(const DirectRefAttrHandler&) = delete;
    DirectRefAttrHandler& operator=(const DirectRefAttrHandler&) = delete;
    virtual ~DirectRefAttrHandler() = default;

    virtual std::u16string getRefValue(const xercesc::DOMElement& element) const = 0;
    virtual void setRefValue(xercesc::DOMElement& element, const std::u16string& value) const = 0;

    /// The bit of the attribute in `DirectRefAttrContainingNodeFilter`.
    std::uint32_t type() const noexcept { return type_; }

protected:
    explicit DirectRefAttrHandler(std::uint32_t type) : type_(type) {}

private:
    std::uint32_t type_;
};

/// The handler of that type; lives as long as the process. `type` must be one of the filter's bits.
const DirectRefAttrHandler& directRefAttrHandler(std::uint32_t type);

/// Normalises subtrees. Keeps nothing from one call to the next.
class ReferenceNormalizer {
public:
    /// Gives the topics of the subtree new ids, which `topicIds` learns, and makes its direct and
    /// multimedia references absolute. `base` is the document that the subtree was taken from: an
    /// imported element doesn't know it any more. `root` may be null.
    void normalizeSubtree(xercesc::DOMElement* root, const xercesc::DOMDocument& base,
                          TopicIdMap& topicIds) const;

private:
    void regenerateTopicIds(xercesc::DOMElement* root, const std::u16string& basePath,
                            TopicIdMap& topicIds) const;
    void makeDirectRefsAbsolute(xercesc::DOMElement* root, const xercesc::DOMDocument& base) const;
    void makeMultimediaRefsAbsolute(xercesc::DOMElement* root,
                                    const xercesc::DOMDocument& base) const;

    IdAttrContainingNodeFilter idFilter_;
    TopicNodeFilter topicFilter_;
    DirectRefAttrContainingNodeFilter directRefFilter_;
    MultimediaRefAttrContainingNodeFilter multimediaRefFilter_;
};

/// `value` with its path part made absolute against `document`; what stands behind the path part
/// stays as it is. External URIs stay whole.
std::u16string makeAbsoluteHref(std::u16string_view value, const xercesc::DOMDocument& document);

/// Rewrites absolute references to topics that have moved.
class ReferenceUpdater {
public:
    /// Replaces the path and topic id of each direct reference below and including `root`, which
    /// may be null, by the topic's new location, if `topicIds` has one. An element id stays.
    void rewriteReferences(xercesc::DOMElement* root, const TopicIdMap& topicIds) const;

private:
    DirectRefAttrContainingNodeFilter directRefFilter_;
};

}  // namespace marrowpress
