#include "xml/document_store.h"

#include "application/host_operations.h"
#include "application/messengers.h"
#include "dom/element_walker.h"
#include "dom/nesting_depth.h"
#include "support/publish_exception.h"
#include "support/request_singleton.h"

namespace marrowpress {
namespace {

constexpr std::uint32_t kContext = 0;

OpenDocumentRecord readRecord(std::uint32_t documentId) {
    const bool isFlagged = HostGetIntProp(kContext, documentId, HostProperty::kDocumentFlag) != 0;
    return {isFlagged ? OpenDocumentState::kFlagged : OpenDocumentState::kOpen, documentId};
}

}  // namespace

OpenDocumentTable& OpenDocumentTable::instance() {
    return RequestSingleton<OpenDocumentTable>::instance();
}

OpenDocumentTable::OpenDocumentTable() {
    std::uint32_t documentId =
        HostGetIdProp(kContext, kSessionObject, HostProperty::kFirstDocument);
    while (documentId != 0) {
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
    const auto known = documents_.find(path);
    if (known != documents_.end()) {
        return known->second;
    }
    recordIfOpen(path);
    xercesc::DOMDocument* const document = load(path);
    if (!document) {
        ReportMessenger::instance().reportCannotRead(path, reference);
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
            return nullptr;
        }
        documents_.emplace(path, document);
        failures_.erase(path);
        removeFiltered(document);
        return document;
    } catch (...) {
        // The caller reports that the file can't be read; why is kept beside.
        if (const std::optional<ParseFailure>& failure = loader_.parser().failure()) {
            failures_.insert_or_assign(path, *failure);
        }
        return nullptr;
    }
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
