#include "references/topic_ids.h"

#include <boost/uuid/uuid_io.hpp>

#include "support/hrefs.h"
#include "support/request_singleton.h"

namespace marrowpress {

bool TopicIdMap::add(const std::u16string& key, const std::u16string& location) {
    if (!byReference_.emplace(key, location).second) {
        return false;
    }
    byFile_.emplace(splitHref(key).path, location);
    return true;
}

std::u16string TopicIdMap::find(std::u16string_view key) const {
    const HrefParts parts = splitHref(key);
    const bool isFile = parts.topicId.empty() || parts.topicId == u".";
    const Entries& entries = isFile ? byFile_ : byReference_;
    const auto found = entries.find(isFile ? parts.path : key);
    return found == entries.end() ? std::u16string() : found->second;
}

void TopicIdMap::mergeWithPrefix(const TopicIdMap& other, std::u16string_view prefix) {
    const auto merge = [prefix](Entries& into, const Entries& from) {
        for (const auto& [key, location] : from) {
            into.emplace(key, std::u16string(prefix) + location);
        }
    };
    merge(byReference_, other.byReference_);
    merge(byFile_, other.byFile_);
}

TopicIdGenerator& TopicIdGenerator::instance() {
    return RequestSingleton<TopicIdGenerator>::instance();
}

std::u16string TopicIdGenerator::nextTopicId() {
    return u"id" + toUtf16(std::string_view(boost::uuids::to_string(uuids_())));
}

}  // namespace marrowpress
