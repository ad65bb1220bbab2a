#include "references/document_kind.h"

#include <string>
#include <string_view>

#include "application/run_observer.h"
#include "dom/attributes.h"
#include "references/dita_reference.h"
#include "references/node_filters.h"
#include "references/reference_paths.h"
#include "support/hrefs.h"
#include "xml/document_store.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;

bool endsBehind(std::u16string_view path, std::u16string_view ending) {
    return path.size() > ending.size() && path.ends_with(ending);
}

void observeReference(const DitaReference& reference, DitaDocKind kind, const DOMElement& node) {
    RunObserver* const observer = RunObserver::existingForReferences();
    if (!observer) {
        return;
    }
    if (!reference.path.empty() && !isExternalUri(reference.path)) {
        const bool isMap = kind == DitaDocKind::DitaDocMap;
        observer->fileReference(isMap ? ReferenceKind::kMap : ReferenceKind::kTopic, reference.path,
                                node);
    }
    for (const std::u16string& path : reference.missingFiles) {
        if (!leadsElsewhere(node)) {
            observer->fileReference(ReferenceKind::kTopic, path, node);
        }
    }
}

}  // namespace

DitaDocKind classifyReference(const DitaReference& reference) {
    if (reference.path.empty()) {
        return DitaDocKind::DitaDocNone;
    }
    if (endsBehind(reference.path, u".dita")) {
        return DitaDocKind::DitaDocTopic;
    }
    if (endsBehind(reference.path, u".ditamap")) {
        return DitaDocKind::DitaDocMap;
    }
    constexpr std::size_t kShortestXmlPath = 5;
    if (reference.path.size() >= kShortestXmlPath && !reference.path.ends_with(u".xml")) {
        return DitaDocKind::DitaDocNone;
    }
    for (const std::u16string_view topicType : {u"concept", u"reference", u"task", u"topic"}) {
        if (reference.type == topicType) {
            return DitaDocKind::DitaDocTopic;
        }
    }
    return reference.format == u"ditamap" ? DitaDocKind::DitaDocMap
                                          : DitaDocKind::DitaDocUnknownXml;
}

DitaDocKind classifyDocument(const DOMDocument* document) {
    const DOMElement* const root = document ? document->getDocumentElement() : nullptr;
    static const TopicNodeFilter topics;
    static const MapNodeFilter maps;
    if (selects(topics, root)) {
        return DitaDocKind::DitaDocTopic;
    }
    return selects(maps, root) ? DitaDocKind::DitaDocMap : DitaDocKind::DitaDocNone;
}

DitaDocKind kindOfReference(const DitaReference& reference, const xercesc::DOMElement& node) {
    DitaDocKind kind = classifyReference(reference);
    if (kind == DitaDocKind::DitaDocUnknownXml) {
        kind = classifyDocument(DocumentStore::instance().getOrLoad(
            toAbsolutePath(reference.path, *node.getOwnerDocument()), &node));
    }
    observeReference(reference, kind, node);
    return kind;
}

}  // namespace marrowpress
