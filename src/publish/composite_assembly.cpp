#include "publish/composite_assembly.h"

#include "application/messengers.h"
#include "dom/copies.h"
#include "dom/nodes.h"
#include "marrowpress/output_names.h"
#include "profiling/conditional_pis.h"
#include "profiling/ditaval_filters.h"
#include "publish/topicref_walk.h"
#include "references/document_kind.h"
#include "references/exclusion_filter.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "xml/document_store.h"
#include "xml/document_writer.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;

bool isExcludedElement(const DOMNode& node) {
    const DOMElement* const element = asElement(&node);
    return element && isExcluded(*element);
}

/// The children of `parent`, except for elements that profiling excludes.
std::vector<DOMNode*> includedChildrenOf(const DOMNode& parent) {
    std::vector<DOMNode*> children = childrenOf(parent);
    std::erase_if(children, [](const DOMNode* child) { return isExcludedElement(*child); });
    return children;
}

/// Appends the parts of a booktitle: each element becomes a phrase with what the element holds,
/// an empty one where profiling excludes it. Text between the parts is dropped.
void appendBookTitle(DOMElement& title, const DOMElement& bookTitle) {
    DOMDocument& document = *title.getOwnerDocument();
    for (const DOMNode* const part : childrenOf(bookTitle)) {
        if (part->getNodeType() == DOMNode::TEXT_NODE) {
            continue;
        }
        if (!asElement(part)) {
            title.appendChild(importCopy(document, *part, {}));
            continue;
        }
        DOMElement* const phrase = document.createElement(u"ph");
        title.appendChild(phrase);
        if (!isExcludedElement(*part)) {
            appendCopies(*phrase, includedChildrenOf(*part), {});
        }
    }
}

}  // namespace

DOMDocument* CompositeDocAssembler::assembleComposite(DOMElement* start, KeySpace& keySpace,
                                                      CompositeDocRequest& request) {
    filter_.setUsePrint(request.usePrint);
    Body body = createBody(start, keySpace, request);
    if (body.state == Body::State::kUnreadable) {
        // Each further request for a file tries again, and tells again that it can't be read.
        body.document = DocumentStore::instance().getOrLoad(request.outputPath);
    }
    if (body.state == Body::State::kUnreadable && body.isWritten) {
        // The file stays without what it was to hold, though it may be there to be read by now.
        ReportMessenger::instance().reportCannotWrite(request.outputPath);
    }
    DOMDocument* const document = body.document;
    if (!document || body.state == Body::State::kOldFileStays) {
        return nullptr;
    }
    ProgressMessenger::instance().reportProcessingReferences();
    DOMElement* const root = document->getDocumentElement();
    keyrefs_.resolveAllKeyrefs(root, keySpace);
    updater_.rewriteReferences(root, request.topicIds);
    conrefs_.resolveConrefs(root, keySpace, request.topicIds);
    writeConditionPIs(request.conditions, root);
    ConditionCatalogs::instance().forget(root);
    request.conditions.clear();
    removeExcludedElements(*document);
    return document;
}

CompositeDocAssembler::Body CompositeDocAssembler::createBody(DOMElement* start, KeySpace& keySpace,
                                                              CompositeDocRequest& request) {
    const bool isOfThisRun = DocumentStore::instance().holds(request.outputPath);
    const WriteStatus created =
        writeEmptyDocument(kCompositeRootName, kCompositePublicId, toUtf8(request.doctypeSystemId),
                           request.outputPath);
    DOMDocument* const document = DocumentStore::instance().getOrLoad(request.outputPath);
    DOMElement* const root = document ? document->getDocumentElement() : nullptr;
    if (!root) {
        return {document ? Body::State::kCreated : Body::State::kUnreadable, document,
                created == WriteStatus::kWritten};
    }
    if (!root->hasChildNodes()) {
        addDocumentShell(*root, request.sourcePath);
    } else if (created == WriteStatus::kFailed && !isOfThisRun) {
        return {Body::State::kOldFileStays, document};
    }
    TopicrefWalk(filter_, keySpace, request.topicIds, request.conditions).run(*root, start);
    return {Body::State::kCreated, document};
}

void CompositeDocAssembler::addDocumentShell(DOMElement& root,
                                             const std::u16string& sourcePath) const {
    DOMElement& shell = createTopicShell(root);
    if (sourcePath.empty()) {
        return;
    }
    const DOMDocument* const source = DocumentStore::instance().getOrLoad(sourcePath);
    if (classifyDocument(source) == DitaDocKind::DitaDocMap) {
        copyMapTitle(*firstElementChild(shell), *source);
    }
}

void CompositeDocAssembler::copyMapTitle(DOMElement& title, const DOMDocument& map) const {
    const DOMElement& root = *map.getDocumentElement();
    const DOMElement* const first = firstElementChild(root);
    if (!selects(titleFilter_, first)) {
        title.setTextContent(root.getAttribute(u"title"));
    } else if (selects(bookTitleFilter_, first)) {
        appendBookTitle(title, *first);
    } else {
        appendCopies(title, childrenOf(*first), {});
    }
}

}  // namespace marrowpress
