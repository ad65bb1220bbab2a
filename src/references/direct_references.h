#pragma once

#include <boost/uuid/random_generator.hpp>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "references/node_filters.h"
#include "support/text.h"

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

/// Where topics have gone: from "path#id" in the source to the text that
/// replaces it in a reference ("#" and the new id, behind a file name once the
/// map was merged with one).
///
/// Keys are compared as exact text. What was recorded first stays.
class TopicIdMap {
public:
    using Entries = std::unordered_map<std::u16string, std::u16string, U16Hash, std::equal_to<>>;

    /// Records a topic, and it as the first of its file if none was. False, and nothing changed,
    /// when the key is known.
    bool add(const std::u16string& key, const std::u16string& location);

    /// The new location for "path#topic", or for the file's first topic where the topic id is
    /// missing or "."; empty when there is none. An unknown topic of a known file has none.
    std::u16string find(std::u16string_view key) const;

    /// Takes over what `other` knows and this map doesn't, with `prefix` in front of each location.
    void mergeWithPrefix(const TopicIdMap& other, std::u16string_view prefix);

    const Entries& byReference() const noexcept { return byReference_; }
    const Entries& byFile() const noexcept { return byFile_; }

private:
    Entries byReference_;
    Entries byFile_;
};

/// Makes the ids of topics: "id" and the text of a version 4 UUID.
///
/// Always the same sequence: the ids are unique within a request, and the same
/// input gives the same output. Every request begins anew.
class TopicIdGenerator {
public:
    static TopicIdGenerator& instance();

    std::u16string nextTopicId();

private:
    std::mt19937 engine_;
    boost::uuids::basic_random_generator<std::mt19937> uuids_{engine_};
};

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
