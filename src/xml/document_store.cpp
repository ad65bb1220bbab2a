#include "xml/document_store.h"

#include <algorithm>
#include <new>
#include <unordered_set>
#include <xercesc/util/OutOfMemoryException.hpp>

#include "application/host_operations.h"
#include "application/messengers.h"
#include "application/run_observer.h"
#include "dom/element_walker.h"
#include "dom/nesting_depth.h"
#include "support/file_entry.h"
#include "support/paths.h"
#include "support/publish_exception.h"
#include "support/request_singleton.h"
#include "support/xerces_ptr.h"
#include "xml/request_memory.h"

namespace marrowpress {
namespace {

constexpr std::uint32_t kContext = 0;

OpenDocumentRecord readRecord(std::uint32_t documentId) {
    const bool isFlagged = HostGetIntProp(kContext, documentId, HostProperty::kDocumentFlag) != 0;
    return {isFlagged ? OpenDocumentState::kFlagged : OpenDocumentState::kOpen, documentId};
}

DocumentGrammar grammarOf(const xercesc::DOMDocument& document, const ParseHistory& history) {
    if (!document.getDoctype()) {
        return DocumentGrammar::kNoDoctype;
    }
    if (!history.isReadWithoutDtd) {
        return DocumentGrammar::kOwn;
    }
    // What an internal subset alone leaves out was never meant to be declared.
    if (domText(document.getDoctype()->getSystemId()).empty()) {
        return DocumentGrammar::kNoDoctype;
    }
    const bool isInvalid = history.failureWithDtd && history.failureWithDtd->isOfValidity;
    return isInvalid ? DocumentGrammar::kInvalid : DocumentGrammar::kNotFound;
}

SourcePlace placeOf(const ParseFailure& failure) {
    return {SourcePlaces::existing()->fileNumber(failure.systemId),
            static_cast<std::uint32_t>(failure.line), static_cast<std::uint32_t>(failure.column)};
}

/// Tells that the document was read without its DTD.
void observeLostDtd(RunObserver& observer, const std::u16string& path,
                    const xercesc::DOMDocument& document, std::u16string_view rootName,
                    const ParseHistory& history) {
    const xercesc::DOMDocumentType* const doctype = document.getDoctype();
    const xercesc::DOMElement* const root = document.getDocumentElement();
    ObservedFault fault{.code = FaultCode::kReadWithoutDtd, .elementName = rootName};
    fault.target = path;
    if (grammarOf(document, history) == DocumentGrammar::kInvalid) {
        fault.code = FaultCode::kBreaksDtd;
        fault.reason = history.failureWithDtd->reason;
        fault.place = placeOf(*history.failureWithDtd);
    } else if (doctype) {
        fault.detail = domText(doctype->getPublicId());
        fault.reason = domText(doctype->getSystemId());
        fault.place = SourcePlaces::existing()->placeOf(*doctype);
    } else if (root) {
        fault.place = SourcePlaces::existing()->placeOf(*root);
    }
    observer.fault(fault);
}

/// Tells of a folder or file whose name holds what ends a path in every reference to it.
void observeCutPath(RunObserver& observer, std::u16string_view path,
                    const xercesc::DOMElement* reference) {
    const std::size_t sign = path.find(u'#');
    if (reference && sign != std::u16string_view::npos) {
        observer.fault({.code = FaultCode::kPathIsCut,
                        .element = reference,
                        .target = path.substr(0, path.find(u'/', sign)),
                        .detail = u"#"});
    }
}

void observeRead(RunObserver& observer, const std::u16string& path,
                 const xercesc::DOMDocument& document, const ParseHistory& history,
                 const xercesc::DOMElement* reference) {
    if (observer.isOwnFile(path)) {
        return;
    }
    const xercesc::DOMElement* const root = document.getDocumentElement();
    const std::u16string_view rootName = root ? domText(root->getTagName()) : std::u16string_view();
    const DocumentGrammar grammar = grammarOf(document, history);
    if (reference) {
        SourcePlaces::existing()->recordReference(path, *reference);
    }
    observer.documentRead(path, rootName, grammar, reference);
    observeCutPath(observer, path, reference);
    // A profile has no DTD to lose.
    if (grammar != DocumentGrammar::kOwn && rootName != u"val") {
        observeLostDtd(observer, path, document, rootName, history);
    }
}

}  // namespace

OpenDocumentTable& OpenDocumentTable::instance() {
    return RequestSingleton<OpenDocumentTable>::instance();
}

OpenDocumentTable::OpenDocumentTable() {
    std::uint32_t documentId =
        HostGetIdProp(kContext, kSessionObject, HostProperty::kFirstDocument);
    std::unordered_set<std::uint32_t> seen;
    // A list whose end leads back into it ends there.
    while (documentId != 0 && seen.size() < kMostOpenDocuments && seen.insert(documentId).second) {
        const HostText path = HostGetStringProp(kContext, documentId, HostProperty::kDocumentPath);
        const OpenDocumentRecord record = readRecord(documentId);
        if (path) {
            records_.insert_or_assign(toUtf16(std::string_view(path.get())), record);
        }
        documentId = HostGetIdProp(kContext, documentId, HostProperty::kNextDocument);
    }
}

const OpenDocumentRecord* OpenDocumentTable::find(const std::u16string& path) const {
    const auto found = records_.find(path);
    return found == records_.end() ? nullptr : &found->second;
}

DocumentStore& DocumentStore::instance() {
    return RequestSingleton<DocumentStore>::instance();
}

xercesc::DOMDocument* DocumentStore::getOrLoad(const std::u16string& path,
                                               const xercesc::DOMElement* reference) {
    requireWorkingHost();
    requireMemory();
    const auto known = documents_.find(path);
    if (known != documents_.end()) {
        return known->second;
    }
    recordIfOpen(path);
    xercesc::DOMDocument* const document = load(path);
    // What could not be read for want of an answer, or of memory, is no fault of the file.
    requireWorkingHost();
    requireMemory();
    RunObserver* const observer = RunObserver::existing();
    if (document && observer) {
        observeRead(*observer, path, *document, loader_.history(), reference);
    } else if (!document) {
        const ReadFailure failure = observer ? readFailureOf(path) : ReadFailure();
        ReportMessenger::instance().reportCannotRead(path, reference, failure);
        if (observer) {
            observer->documentUnread(path, failure.reason, reference);
        }
    }
    return document;
}

xercesc::DOMDocument& DocumentStore::mustLoad(const std::u16string& path,
                                              const xercesc::DOMElement* reference) {
    xercesc::DOMDocument* const document = getOrLoad(path, reference);
    if (!document) {
        throw PublishException();
    }
    return *document;
}

xercesc::DOMDocument* DocumentStore::load(const std::u16string& path) {
    try {
        xercesc::DOMDocument* const document = loader_.parseFile(path, ParserBundle::kAllRetries);
        if (document && isNestedTooDeeply(document->getDocumentElement())) {
            if (SourcePlaces* const places = SourcePlaces::existing()) {
                places->forget(*document);
            }
            loader_.dropDocument();
            return nullptr;
        }
        documents_.emplace(path, document);
        failures_.erase(path);
        removeFiltered(document);
        return document;
    } catch (const std::bad_alloc&) {
        // No fault of the file, and nothing that the run can go on from.
        throw;
    } catch (const xercesc::OutOfMemoryException&) {
        failures_[path] = {u"it takes too much memory or time", {}, 0, 0, false};
        return nullptr;
    } catch (...) {
        // The caller reports that the file can't be read; why is kept beside.
        if (const std::optional<ParseFailure>& failure = loader_.parser().failure()) {
            failures_.insert_or_assign(path, *failure);
        }
        return nullptr;
    }
}

bool DocumentStore::hasRead(const std::u16string& path) const {
    const std::optional<FileEntry> entry = fileEntry(path);
    return entry && entry->status &&
           std::any_of(documents_.begin(), documents_.end(), [&](const auto& document) {
               return isOneEntry(entry, readEntry(document.first));
           });
}

/// Why the file at `path` could not be read: the system's reason comes first.
ReadFailure DocumentStore::readFailureOf(const std::u16string& path) const {
    const std::string reason = unreadableReason(path);
    if (!reason.empty()) {
        return {toUtf16(reason), {}, 0, 0};
    }
    if (const ParseFailure* const failure = failureOf(path)) {
        return {failure->reason, failure->systemId, static_cast<std::uint32_t>(failure->line),
                static_cast<std::uint32_t>(failure->column)};
    }
    return {u"elements nest too deeply", {}, 0, 0};
}

const ParseFailure* DocumentStore::failureOf(const std::u16string& path) const {
    const auto failure = failures_.find(path);
    return failure == failures_.end() ? nullptr : &failure->second;
}

void DocumentStore::recordIfOpen(const std::u16string& path) {
    if (const OpenDocumentRecord* record = OpenDocumentTable::instance().find(path)) {
        touchedOpenDocuments_.insert_or_assign(path, *record);
    }
}

void DocumentStore::removeFiltered(xercesc::DOMDocument* document) const {
    if (document && loadFilter_) {
        removeElements(collectElements(document->getDocumentElement(), *loadFilter_));
    }
}

}  // namespace marrowpress
