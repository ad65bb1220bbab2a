#include "application/messengers.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

#include "application/host_operations.h"
#include "application/run_observer.h"
#include "dom/attributes.h"
#include "dom/document_path.h"
#include "dom/nodes.h"
#include "marrowpress/messages.h"
#include "support/hrefs.h"
#include "support/paths.h"
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

/// Shows the line of a message, and tells the observer, if there is one, of `fault`, to which the
/// line belongs.
void reportMessage(std::string line, ObservedFault fault) {
    line.append("\r\n").resize(std::min(line.size(), kLongestMessageLine));
    HostConsoleWrite(line.c_str());
    if (RunObserver* const observer = RunObserver::existing()) {
        fault.line = line;
        observer->fault(fault);
    }
}

std::string elementNotFoundLine(std::u16string_view tagName, std::u16string_view id,
                                const xercesc::DOMDocument& target) {
    return messageLine(MessageId::kElementNotFound,
                       {tagName, id, domText(target.getDocumentURI())});
}

/// Whether an empty id is that of a "conrefend" that names no element. Whatever becomes of its
/// "conref", another line says so.
bool isEndWithoutId(const xercesc::DOMElement* reference, std::u16string_view id) {
    return id.empty() && reference && reference->hasAttribute(u"conrefend") &&
           !splitHref(attributeView(*reference, u"conref")).topicId.empty();
}

/// The path that `reference` is cut at, if it was meant for a file with a sign in its name that
/// ends a path; empty otherwise.
std::u16string cutPartOf(const xercesc::DOMElement& reference) {
    const std::u16string_view href = attributeView(reference, u"href");
    if (href.find_first_of(u"#\\") == std::u16string_view::npos) {
        return {};
    }
    if (isAbsolutePath(href)) {
        return partThatCutsReferences(href);
    }
    const std::u16string base = documentPath(*reference.getOwnerDocument());
    return partThatCutsReferences(std::u16string(parentPath(base)).append(u"/").append(href));
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

void ReportMessenger::reportKeyNotFound(std::u16string_view keyName, const Element* reference,
                                        bool isNobodysKey) {
    reportMessage(messageLine(MessageId::kKeyNotFound, {keyName}), {.code = FaultCode::kKeyNotFound,
                                                                    .element = reference,
                                                                    .target = keyName,
                                                                    .isArtefact = isNobodysKey});
}

void ReportMessenger::reportCannotRead(std::u16string_view path, const Element* reference,
                                       const ReadFailure& failure) {
    SourcePlace place;
    if (SourcePlaces* const places = SourcePlaces::existing(); places && failure.line > 0) {
        place = {places->fileNumber(failure.file), failure.line, failure.column};
    }
    reportMessage(messageLine(MessageId::kCannotRead, {path}), {.code = FaultCode::kCannotRead,
                                                                .element = reference,
                                                                .target = path,
                                                                .reason = failure.reason,
                                                                .place = place});
}

void ReportMessenger::reportCannotWrite(std::u16string_view path, std::string_view reason) {
    reportMessage(messageLine(MessageId::kCannotWrite, {path}),
                  {.code = FaultCode::kCannotWrite, .target = path, .reason = toUtf16(reason)});
}

void ReportMessenger::reportNoFileName(std::u16string_view path, std::u16string_view navtitle,
                                       const Element& reference) {
    reportMessage(messageLine(MessageId::kCannotWrite, {path}),
                  {.code = FaultCode::kNavtitleNoFileName,
                   .element = &reference,
                   .target = navtitle,
                   .detail = path});
}

void ReportMessenger::reportElementInTopicNotFound(std::u16string_view tagName,
                                                   std::u16string_view elementId,
                                                   std::u16string_view topicId,
                                                   const Document& target,
                                                   const Element* reference) {
    ObservedFault fault{.code = FaultCode::kElementInTopicNotFound, .element = reference};
    fault.detail = tagName;
    RunObserver* const observer = RunObserver::existing();
    const std::u16string wanted =
        observer ? pathWithIds(target, topicId, elementId) : std::u16string();
    fault.target = wanted;
    fault.reason =
        observer ? observer->bearerOf(target, elementId, topicId) : std::u16string_view();
    reportMessage(messageLine(MessageId::kElementInTopicNotFound,
                              {tagName, elementId, topicId, domText(target.getDocumentURI())}),
                  fault);
}

void ReportMessenger::reportElementNotFound(std::u16string_view tagName, std::u16string_view id,
                                            const Document& target, const Element* reference) {
    ObservedFault fault{.code = FaultCode::kElementNotFound, .element = reference};
    fault.detail = tagName;
    RunObserver* const observer = RunObserver::existing();
    const std::u16string wanted = observer ? pathWithIds(target, id) : std::u16string();
    fault.target = wanted;
    fault.reason = observer ? observer->bearerOf(target, id) : std::u16string_view();
    fault.isArtefact = observer && isEndWithoutId(reference, id);
    reportMessage(elementNotFoundLine(tagName, id, target), fault);
}

void ReportMessenger::reportConrefLoop(std::u16string_view tagName, std::u16string_view id,
                                       const Document& target, const Element& reference,
                                       std::vector<SourcePlace> ring) {
    const HrefParts parts = splitHref(attributeView(reference, u"conref"));
    const std::u16string wanted = RunObserver::existing()
                                      ? pathWithIds(target, parts.topicId, parts.elementId)
                                      : std::u16string();
    reportMessage(elementNotFoundLine(tagName, id, target), {.code = FaultCode::kConrefLoop,
                                                             .element = &reference,
                                                             .target = wanted,
                                                             .related = std::move(ring)});
}

void ReportMessenger::reportInvalidConrefEnd(const Element* reference) {
    ObservedFault fault{.code = FaultCode::kInvalidConrefEnd, .element = reference};
    if (reference) {
        fault.target = attributeView(*reference, u"conrefend");
        fault.detail = attributeView(*reference, u"conref");
    }
    reportMessage(messageLine(MessageId::kInvalidConrefEnd), fault);
}

void ReportMessenger::reportReferencedFileNotFound(std::u16string_view path,
                                                   const Element* reference) {
    ObservedFault fault{.code = FaultCode::kReferencedFileNotFound, .element = reference};
    fault.target = path;
    std::u16string cutPart;
    if (RunObserver::existing() && reference) {
        fault.isArtefact = leadsElsewhere(*reference);
        cutPart = cutPartOf(*reference);
        if (!cutPart.empty()) {
            fault.code = FaultCode::kPathIsCut;
            fault.target = cutPart;
            fault.detail = cutPart.find(u'#') < cutPart.find(u'\\') ? u"#" : u"\\";
        }
    }
    reportMessage(messageLine(MessageId::kReferencedFileNotFound, {path}), fault);
}

}  // namespace marrowpress
