#pragma once

#include <boost/uuid/random_generator.hpp>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>

#include "support/text.h"

/// The ids of the publication's topics, and where topics of the sources have gone.
namespace marrowpress {

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

}  // namespace marrowpress
