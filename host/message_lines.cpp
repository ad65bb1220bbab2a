#include "host/message_lines.h"

#include <array>

namespace marrowpress {
namespace {

constexpr std::array kMessages{MessageId::kProcessingKeySpaces,
                               MessageId::kUpdatingReferences,
                               MessageId::kAppending,
                               MessageId::kProcessingReferences,
                               MessageId::kKeyNotFound,
                               MessageId::kCannotRead,
                               MessageId::kCannotWrite,
                               MessageId::kElementInTopicNotFound,
                               MessageId::kElementNotFound,
                               MessageId::kInvalidConrefEnd,
                               MessageId::kReferencedFileNotFound};

/// Whether `line` has what `text` says around its arguments, in its order. Where the line was cut,
/// what should follow is missing.
bool isOf(std::string_view line, std::string_view text) {
    constexpr std::string_view kPlace = "%s";
    const bool isCut = line.size() >= kLongestMessageLine;
    std::size_t place = text.find(kPlace);
    if (!line.starts_with(text.substr(0, place))) {
        return false;
    }
    while (place != std::string_view::npos) {
        line.remove_prefix(line.find(text.substr(0, place)) + place);
        text.remove_prefix(place + kPlace.size());
        place = text.find(kPlace);
        if (line.find(text.substr(0, place)) == std::string_view::npos) {
            return isCut;
        }
    }
    return true;
}

}  // namespace

std::optional<MessageId> messageIdOf(std::string_view line) {
    for (const MessageId id : kMessages) {
        if (isOf(line, messageText(id))) {
            return id;
        }
    }
    return std::nullopt;
}

}  // namespace marrowpress
