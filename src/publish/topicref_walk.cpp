#include "publish/topicref_walk.h"

#include <algorithm>
#include <string>

#include "application/messengers.h"
#include "application/run_observer.h"
#include "dom/attributes.h"
#include "dom/copies.h"
#include "dom/document_path.h"
#include "dom/nodes.h"
#include "profiling/conditional_pis.h"
#include "references/conref_target.h"
#include "references/copied_references.h"
#include "references/dita_reference.h"
#include "references/document_kind.h"
#include "references/reference_paths.h"
#include "support/paths.h"
#include "support/short_cuts.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "xml/document_store.h"

namespace marrowpress {

using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::DOMNodeFilter;

namespace {

/// Tells that no element of the topic's file has the id that the reference names.
void observeLostFragment(const DOMElement& node, const DitaReference& reference,
                         const DOMDocument& document) {
    if (RunObserver* const observer = RunObserver::existing()) {
        const std::u16string target = reference.path + u"#" + reference.fragment;
        const std::u16string around = topicIdAround(document, reference.fragment);
        observer->fault({.code = FaultCode::kFragmentNotFound,
                         .element = &node,
                         .target = target,
                         .detail = around});
    }
}

/// Tells that what stands inside a reference to a map comes to nothing.
void observeDroppedChildren(const DOMElement& node, std::u16string_view mapPath) {
    RunObserver* const observer = RunObserver::existing();
    if (!observer) {
        return;
    }
    const TopicrefNodeFilter topicrefs;
    const CompositeDocNodeFilter published;
    std::vector<DOMElement*> children = childElementsOf(node);
    std::erase_if(children, [&](const DOMElement* child) {
        return !selects(topicrefs, child) || !selects(published, child);
    });
    if (!children.empty()) {
        const std::u16string count = toUtf16(std::string_view(std::to_string(children.size())));
        observer->fault({.code = FaultCode::kMapReferenceChildren,
                         .element = children.front(),
                         .target = mapPath,
                         .detail = count});
    }
}

}  // namespace

DOMElement& createTopicShell(DOMElement& parent) {
    DOMDocument& document = *parent.getOwnerDocument();
    DOMElement* const topic = document.createElement(u"topic");
    DOMElement* const title = document.createElement(u"title");
    const std::u16string id = TopicIdGenerator::instance().nextTopicId();
    topic->appendChild(title);
    parent.appendChild(topic);
    topic->setAttribute(u"id", id.c_str());
    return *topic;
}

void TopicrefWalk::run(DOMElement& parent, DOMElement* start) {
    if (!start) {
        return;
    }
    openMaps_.assign(1, start->getOwnerDocument());
    steps_.assign(1, {start, &parent});
    while (!steps_.empty()) {
        const Step step = steps_.back();
        steps_.pop_back();
        if (step.node) {
            visit(*step.node, *step.parent);
        } else {
            openMaps_.pop_back();
        }
    }
}

void TopicrefWalk::visit(DOMElement& node, DOMElement& parent) {
    switch (filter_.acceptNode(&node)) {
        case DOMNodeFilter::FILTER_REJECT:
            break;
        case DOMNodeFilter::FILTER_SKIP:
            visitChildren(node, parent);
            break;
        case DOMNodeFilter::FILTER_ACCEPT:
            visitReference(node, parent);
            break;
    }
}

void TopicrefWalk::visitReference(DOMElement& node, DOMElement& parent) {
    if (selects(topicheadFilter_, &node)) {
        visitChildren(node, appendHead(node, parent));
        return;
    }
    const DitaReference reference = readDitaReference(node, &keySpace_);
    switch (kindOfReference(reference, node)) {
        case DitaDocKind::DitaDocTopic:
            visitChildren(node, appendTopicDocument(parent, node, reference));
            break;
        case DitaDocKind::DitaDocMap:
            appendNestedMap(parent, node, reference);
            break;
        case DitaDocKind::DitaDocNone:
        case DitaDocKind::DitaDocUnknownXml:
            visitChildren(node, parent);
            break;
    }
}

void TopicrefWalk::visitChildren(const DOMElement& node, DOMElement& parent) {
    const std::vector<DOMElement*> children = childElementsOf(node);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        steps_.push_back({*child, &parent});
    }
}

DOMElement& TopicrefWalk::appendHead(const DOMElement& node, DOMElement& parent) const {
    const std::u16string navtitle = attributeOf(node, u"navtitle");
    if (navtitle.empty()) {
        return parent;
    }
    DOMElement& shell = createTopicShell(parent);
    firstElementChild(shell)->setTextContent(navtitle.c_str());
    return shell;
}

DOMElement& TopicrefWalk::appendTopicDocument(DOMElement& parent, const DOMElement& node,
                                              const DitaReference& reference) {
    reportMissingFiles(reference, node);
    // The path as it was read, while maps, and files that had to be looked into, are asked for
    // under the path made absolute once more. Paths with a drive letter differ then: their escapes
    // are undone twice.
    DOMDocument* const document = DocumentStore::instance().getOrLoad(reference.path, &node);
    DOMElement* const root = document ? document->getDocumentElement() : nullptr;
    if (!root) {
        return parent;
    }
    gatherConditions(*root, parent);
    DOMElement* const element =
        reference.fragment.empty() ? root : document->getElementById(reference.fragment.c_str());
    if (!element) {
        observeLostFragment(node, reference, *document);
        return parent;
    }
    if (RunObserver* const observer = RunObserver::existing()) {
        observer->topic(reference.path, node);
    }
    ProgressMessenger::instance().reportAppending(
        pathFileName(domText(document->getDocumentURI())));
    DOMElement* const appended =
        appendTopicSubtree(*element, parent, {&node, u"href", attributeView(node, u"href"), true});
    return appended ? *appended : parent;
}

/// Always of the whole document, also when only a part of it is taken in.
void TopicrefWalk::gatherConditions(DOMElement& root, const DOMElement& parent) {
    if (!conditions_.mergeEnabled) {
        return;  // nothing would come of reading them
    }
    if (root.getOwnerDocument() == parent.getOwnerDocument()) {
        // The output itself, which has grown meanwhile.
        ConditionCatalogs::instance().forget(&root);
    }
    mergeConditionCatalog(conditions_, ConditionCatalogs::instance().catalogOf(root));
}

DOMElement* TopicrefWalk::appendTopicSubtree(DOMElement& element, DOMElement& parent,
                                             const CopyCause& cause) {
    const DOMDocument& source = *element.getOwnerDocument();
    const bool carriesMarkers = conditions_.mergeEnabled && hasMarkersBeside(element, parent);
    if (carriesMarkers) {
        carryMarkersInFrontOf(element, parent);
    }
    DOMElement* lastElement = nullptr;
    if (selects(ditabaseFilter_, &element)) {
        for (DOMNode* const child : childrenOf(element)) {
            DOMNode* const copy = importTopicNode(source, *child, parent, cause);
            if (DOMElement* const copiedElement = asElement(copy)) {
                lastElement = copiedElement;
            }
        }
    } else {
        lastElement = asElement(importTopicNode(source, element, parent, cause));
    }
    if (carriesMarkers) {
        carryMarkersBehind(element, parent);
    }
    return lastElement;
}

/// Most documents have none, and a way past all siblings of each part that is taken in is long.
bool TopicrefWalk::hasMarkersBeside(const DOMNode& node, const DOMElement& parent) {
    const bool isGrowing = node.getOwnerDocument() == parent.getOwnerDocument();
    if (isGrowing || !ShortCuts::taken().keepConditions) {
        return true;
    }
    const auto [known, isNew] = hasMarkers_.try_emplace(node.getParentNode(), false);
    if (isNew) {
        const std::vector<DOMNode*> siblings = childrenOf(*node.getParentNode());
        known->second =
            std::any_of(siblings.begin(), siblings.end(),
                        [this](const DOMNode* sibling) { return selects(markers_, sibling); });
    }
    return known->second;
}

/// Nearest first, so that the markers come out in the reverse of their order.
void TopicrefWalk::carryMarkersInFrontOf(const DOMNode& node, DOMElement& parent) {
    for (DOMNode* marker = node.getPreviousSibling(); marker;
         marker = marker->getPreviousSibling()) {
        carryConditionMarker(conditions_, *marker, parent);
    }
}

void TopicrefWalk::carryMarkersBehind(const DOMNode& node, DOMElement& parent) {
    for (DOMNode* marker = node.getNextSibling(); marker; marker = marker->getNextSibling()) {
        carryConditionMarker(conditions_, *marker, parent);
    }
}

DOMNode* TopicrefWalk::importTopicNode(const DOMDocument& source, DOMNode& node, DOMElement& parent,
                                       const CopyCause& cause) {
    renameMergedMarker(conditions_, node);
    DOMNode* const copy = importCopy(*parent.getOwnerDocument(), node, cause);
    if (DOMElement* const copiedElement = asElement(copy)) {
        normalizer_.normalizeSubtree(copiedElement, source, topicIds_);
    }
    return parent.appendChild(copy);
}

void TopicrefWalk::appendNestedMap(DOMElement& parent, const DOMElement& node,
                                   const DitaReference& reference) {
    reportMissingFiles(reference, node);
    DOMDocument* const map = DocumentStore::instance().getOrLoad(
        toAbsolutePath(reference.path, *node.getOwnerDocument()), &node);
    if (!map || isOpen(*map)) {
        return;
    }
    if (openMaps_.size() > 1) {
        CopiedReferences::instance().follow();
    }
    observeDroppedChildren(node, documentPath(*map));
    DOMElement* const root = map->getDocumentElement();
    keyrefs_.resolveAllKeyrefs(root, keySpace_);
    conrefs_.resolveConrefs(root, keySpace_, topicIds_);
    ConditionCatalogs::instance().forget(root);
    if (!root) {
        return;
    }
    openMaps_.push_back(map);
    steps_.push_back({nullptr, nullptr});
    steps_.push_back({root, &parent});
}

bool TopicrefWalk::isOpen(const DOMDocument& map) const {
    return std::find(openMaps_.begin(), openMaps_.end(), &map) != openMaps_.end();
}

}  // namespace marrowpress
