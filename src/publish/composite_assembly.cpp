#include "publish/composite_assembly.h"

#include "client/messages.h"
#include "profiling/condition_merge.h"
#include "profiling/ditaval_filters.h"
#include "publish/topicref_walk.h"
#include "references/reference_resolution.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "xml/document_store.h"
#include "xml/document_writer.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::DOMNodeFilter;

bool isExcluded(const DOMNode& node) {
    const DOMElement* const element = asElement(&node);
    return element && ExclusionFilterHolder::instance().excludes(*element);
}

/// Appends copies of all children of `source`.
void appendChildren(DOMElement& target, const DOMNode& source) {
    DOMDocument& document = *target.getOwnerDocument();
    for (const DOMNode* child = source.getFirstChild(); child; child = child->getNextSibling()) {
        target.appendChild(document.importNode(child, true));
    }
}

/// Appends copies of the children of `source`, except for elements that profiling excludes.
void appendIncludedChildren(DOMElement& target, const DOMNode& source) {
    DOMDocument& document = *target.getOwnerDocument();
    for (const DOMNode* child = source.getFirstChild(); child; child = child->getNextSibling()) {
        if (!isExcluded(*child)) {
            target.appendChild(document.importNode(child, true));
        }
    }
}

/// Appends the parts of a booktitle: each element becomes a phrase with what the element holds,
/// an empty one where profiling excludes it. Text between the parts is dropped.
void appendBookTitle(DOMElement& title, const DOMElement& bookTitle) {
    DOMDocument& document = *title.getOwnerDocument();
    for (const DOMNode* part = bookTitle.getFirstChild(); part; part = part->getNextSibling()) {
        if (part->getNodeType() == DOMNode::TEXT_NODE) {
            continue;
        }
        if (!asElement(part)) {
            title.appendChild(document.importNode(part, true));
            continue;
        }
        DOMElement* const phrase = document.createElement(u"ph");
        title.appendChild(phrase);
        if (!isExcluded(*part)) {
            appendIncludedChildren(*phrase, *part);
        }
    }
}

}  // namespace

DOMNodeFilter::FilterAction CompositeDocNodeFilter::acceptElement(const DOMElement& element) const {
    const AttrBasedElementNodeFilter resourceOnly(u"processing-role", u"resource-only");
    const AttrBasedElementNodeFilter notForPrint(u"print", u"no");
    const bool isLeftOut = resourceOnly.acceptNode(&element) == FILTER_ACCEPT ||
                           (usePrint_ && notForPrint.acceptNode(&element) == FILTER_ACCEPT) ||
                           ReltableNodeFilter().acceptNode(&element) == FILTER_ACCEPT ||
                           ExclusionFilterHolder::instance().excludes(element);
    return isLeftOut ? FILTER_REJECT : TopicrefNodeFilter().acceptNode(&element);
}

DOMDocument* CompositeDocAssembler::assembleComposite(DOMElement* start, DOMDocument& keyDoc,
                                                      CompositeDocRequest& request) {
    filter_.setUsePrint(request.usePrint);
    const bool isUsable = createBody(start, keyDoc, request);
    DOMDocument* const document = DocumentStore::instance().getOrLoad(request.outputPath);
    if (!document || !isUsable) {
        return nullptr;
    }
    ProgressMessenger::instance().reportProgress(MessageId::kProcessingReferences);
    DOMElement* const root = document->getDocumentElement();
    keyrefs_.resolveAllKeyrefs(root, keyDoc);
    updater_.rewriteReferences(root, request.idMap);
    conrefs_.resolveConrefs(root, keyDoc, request.idMap);
    writeConditionPIs(request.conditions, root);
    request.conditions.clear();
    removeExcludedElements(*document);
    return document;
}

/// Gives false when the file is an old one that can't be replaced: what it holds is of another run.
bool CompositeDocAssembler::createBody(DOMElement* start, DOMDocument& keyDoc,
                                       CompositeDocRequest& request) {
    const bool isOfThisRun = DocumentStore::instance().holds(request.outputPath);
    const WriteStatus created =
        writeEmptyDocument("dita", "-//OASIS//DTD DITA Composite//EN",
                           toUtf8(request.doctypeSystemId), request.outputPath);
    DOMDocument* const document = DocumentStore::instance().getOrLoad(request.outputPath);
    DOMElement* const root = document ? document->getDocumentElement() : nullptr;
    if (!root) {
        return true;
    }
    if (!root->hasChildNodes()) {
        addDocumentShell(*root, request.sourcePath);
    } else if (created == WriteStatus::kFailed && !isOfThisRun) {
        return false;
    }
    TopicrefWalk(*this, keyDoc, request).run(*root, start);
    return true;
}

void CompositeDocAssembler::addDocumentShell(DOMElement& root,
                                             const std::u16string& sourcePath) const {
    DOMElement& shell = createTopicShell(root);
    if (sourcePath.empty()) {
        return;
    }
    const DOMDocument* const source = DocumentStore::instance().getOrLoad(sourcePath);
    if (classifyDocument(source) == DitaDocKind::DitaDocMap) {
        copyMapTitle(*shell.getFirstElementChild(), *source);
    }
}

void CompositeDocAssembler::copyMapTitle(DOMElement& title, const DOMDocument& map) const {
    const DOMElement& root = *map.getDocumentElement();
    const DOMElement* const first = root.getFirstElementChild();
    if (titleFilter_.acceptNode(first) != DOMNodeFilter::FILTER_ACCEPT) {
        title.setTextContent(root.getAttribute(u"title"));
    } else if (bookTitleFilter_.acceptNode(first) == DOMNodeFilter::FILTER_ACCEPT) {
        appendBookTitle(title, *first);
    } else {
        appendChildren(title, *first);
    }
}

}  // namespace marrowpress
