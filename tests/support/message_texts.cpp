#include "tests/support/message_texts.h"

#include <initializer_list>

namespace marrowpress {
namespace {

constexpr std::string_view kPlace = "%s";
constexpr const char* kLineEnd = "\r\n";

/// The text of `id` with `arguments` in the places of "%s", in their order.
std::string filled(MessageId id, std::initializer_list<std::string_view> arguments = {}) {
    std::string text(messageText(id));
    std::size_t place = 0;
    for (const std::string_view argument : arguments) {
        place = text.find(kPlace, place);
        text.replace(place, kPlace.size(), argument);
        place += argument.size();
    }
    return text;
}

}  // namespace

std::string processingKeySpaces() {
    return filled(MessageId::kProcessingKeySpaces);
}

std::string updatingReferences() {
    return filled(MessageId::kUpdatingReferences);
}

std::string appending(std::string_view fileName) {
    return filled(MessageId::kAppending, {fileName});
}

std::string processingReferences() {
    return filled(MessageId::kProcessingReferences);
}

std::string keyNotFound(std::string_view keyName) {
    return filled(MessageId::kKeyNotFound, {keyName}) + kLineEnd;
}

std::string cannotRead(std::string_view path) {
    return filled(MessageId::kCannotRead, {path}) + kLineEnd;
}

std::string cannotWrite(std::string_view path) {
    return filled(MessageId::kCannotWrite, {path}) + kLineEnd;
}

std::string elementInTopicNotFound(std::string_view tagName, std::string_view elementId,
                                   std::string_view topicId, std::string_view file) {
    return filled(MessageId::kElementInTopicNotFound, {tagName, elementId, topicId, file}) +
           kLineEnd;
}

std::string elementNotFound(std::string_view tagName, std::string_view id, std::string_view file) {
    return filled(MessageId::kElementNotFound, {tagName, id, file}) + kLineEnd;
}

std::string invalidConrefEnd() {
    return filled(MessageId::kInvalidConrefEnd) + kLineEnd;
}

std::string referencedFileNotFound(std::string_view path) {
    return filled(MessageId::kReferencedFileNotFound, {path}) + kLineEnd;
}

}  // namespace marrowpress
