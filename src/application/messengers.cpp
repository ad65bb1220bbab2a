#include "application/messengers.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>

#include "application/host_operations.h"
#include "marrowpress/messages.h"
#include "support/request_singleton.h"
#include "support/text.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

/// The text of a message with an argument in the place of each "%s". It is put together here and
/// not by the printf family, so that no text, whoever wrote it, is ever read as a format.
std::string messageLine(MessageId id, std::initializer_list<std::u16string_view> arguments = {}) {
    constexpr std::string_view kPlace = "%s";
    std::string_view rest = messageText(id);
    std::string line;
    for (const std::u16string_view argument : arguments) {
        const std::size_t place = std::min(rest.find(kPlace), rest.size());
        line.append(rest.substr(0, place)).append(toUtf8(argument));
        rest.remove_prefix(std::min(place + kPlace.size(), rest.size()));
    }
    line.append(rest);
    line.resize(std::min(line.size(), kLongestMessageLine));
    return line;
}

void reportProgress(const std::string& line) {
    constexpr std::int32_t kLineKind = 4;
    constexpr std::int32_t kNoNumber = -1;
    HostReportProgress(kLineKind, line.c_str(), kNoNumber);
}

void reportMessage(std::string line) {
    line.append("\r\n").resize(std::min(line.size(), kLongestMessageLine));
    HostConsoleWrite(line.c_str());
}

}  // namespace

ProgressMessenger& ProgressMessenger::instance() {
    return RequestSingleton<ProgressMessenger>::instance();
}

void ProgressMessenger::reportProcessingKeySpaces() {
    reportProgress(messageLine(MessageId::kProcessingKeySpaces));
}

void ProgressMessenger::reportUpdatingReferences() {
    reportProgress(messageLine(MessageId::kUpdatingReferences));
}

void ProgressMessenger::reportAppending(std::u16string_view fileName) {
    reportProgress(messageLine(MessageId::kAppending, {fileName}));
}

void ProgressMessenger::reportProcessingReferences() {
    reportProgress(messageLine(MessageId::kProcessingReferences));
}

ReportMessenger& ReportMessenger::instance() {
    return RequestSingleton<ReportMessenger>::instance();
}

void ReportMessenger::reportKeyNotFound(std::u16string_view keyName, const Element* /*reference*/) {
    reportMessage(messageLine(MessageId::kKeyNotFound, {keyName}));
}

void ReportMessenger::reportCannotRead(std::u16string_view path, const Element* /*reference*/) {
    reportMessage(messageLine(MessageId::kCannotRead, {path}));
}

void ReportMessenger::reportCannotWrite(std::u16string_view path) {
    reportMessage(messageLine(MessageId::kCannotWrite, {path}));
}

void ReportMessenger::reportElementInTopicNotFound(std::u16string_view tagName,
                                                   std::u16string_view elementId,
                                                   std::u16string_view topicId,
                                                   const Document& target,
                                                   const Element* /*reference*/) {
    reportMessage(messageLine(MessageId::kElementInTopicNotFound,
                              {tagName, elementId, topicId, domText(target.getDocumentURI())}));
}

void ReportMessenger::reportElementNotFound(std::u16string_view tagName, std::u16string_view id,
                                            const Document& target, const Element* /*reference*/) {
    reportMessage(
        messageLine(MessageId::kElementNotFound, {tagName, id, domText(target.getDocumentURI())}));
}

void ReportMessenger::reportInvalidConrefEnd(const Element* /*reference*/) {
    reportMessage(messageLine(MessageId::kInvalidConrefEnd));
}

void ReportMessenger::reportReferencedFileNotFound(std::u16string_view path,
                                                   const Element* /*reference*/) {
    reportMessage(messageLine(MessageId::kReferencedFileNotFound, {path}));
}

}  // namespace marrowpress
