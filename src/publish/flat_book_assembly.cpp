#include "publish/flat_book_assembly.h"

#include <algorithm>
#include <climits>

#include "application/messengers.h"
#include "application/run_observer.h"
#include "dom/attributes.h"
#include "dom/nodes.h"
#include "marrowpress/output_names.h"
#include "references/dita_reference.h"
#include "references/document_kind.h"
#include "references/reference_paths.h"
#include "support/paths.h"
#include "support/text.h"
#include "xml/document_store.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNodeFilter;

/// Whether a name leaves room for what stands behind it while the file is replaced.
bool isShortEnough(std::u16string_view path) {
    return toUtf8(pathFileName(path)).size() + kAsideSuffix.size() <= NAME_MAX;
}

/// Tells that a title with separators is no file name: its component stands in another folder, or
/// nowhere.
void observeSeparators(std::u16string_view navtitle, std::u16string_view path,
                       const DOMElement& node) {
    RunObserver* const observer = RunObserver::existing();
    if (observer && std::any_of(navtitle.begin(), navtitle.end(), isPathSeparator)) {
        observer->fault({.code = FaultCode::kNavtitleNoFileName,
                         .element = &node,
                         .target = navtitle,
                         .detail = path});
    }
}

}  // namespace

/// What one run gathers.
struct FlatBookAssembler::State {
    const FlatBookRequest& request;
    KeySpace& keySpace;
    std::vector<DOMDocument*> documents;
    TopicIdMap topicIds;
    std::int32_t containerCounter = 0;
};

std::vector<DOMDocument*> FlatBookAssembler::assembleBook(DOMElement* mapRoot, KeySpace& keySpace,
                                                          const FlatBookRequest& request,
                                                          TopicIdMap& topicIds) {
    filter_.setUsePrint(request.usePrint);
    State state{request, keySpace, {}, {}, 0};
    if (mapRoot) {
        collectBookComponents(*mapRoot, state);
    }
    topicIds = state.topicIds;
    for (DOMDocument* const document : state.documents) {
        updater_.rewriteReferences(document->getDocumentElement(), topicIds);
    }
    return state.documents;
}

void FlatBookAssembler::collectBookComponents(DOMElement& root, State& state) {
    std::vector<DOMElement*> pending{&root};
    while (!pending.empty()) {
        DOMElement& node = *pending.back();
        pending.pop_back();
        const DOMNodeFilter::FilterAction action = filter_.acceptNode(&node);
        const bool isComponent =
            action == DOMNodeFilter::FILTER_ACCEPT && addComponent(node, state);
        if (action != DOMNodeFilter::FILTER_REJECT && !isComponent) {
            // The first child on top.
            const std::vector<DOMElement*> children = childElementsOf(node);
            pending.insert(pending.end(), children.rbegin(), children.rend());
        }
    }
}

/// Gives false for a reference without a target: what is below it is looked at in its place.
bool FlatBookAssembler::addComponent(DOMElement& node, State& state) {
    if (selects(topicheadFilter_, &node)) {
        addHeadComponent(node, state);
        return true;
    }
    const DitaReference reference = readDitaReference(node, &state.keySpace);
    const DitaDocKind kind = kindOfReference(reference, node);
    if (kind != DitaDocKind::DitaDocTopic && kind != DitaDocKind::DitaDocMap) {
        return false;
    }
    addTopicComponent(node, reference, state);
    return true;
}

void FlatBookAssembler::addTopicComponent(DOMElement& node, const DitaReference& reference,
                                          State& state) {
    reportMissingFiles(reference, node);
    const std::u16string sourcePath = toAbsolutePath(reference.path, *node.getOwnerDocument());
    if (!DocumentStore::instance().getOrLoad(sourcePath, &node)) {
        return;
    }
    const std::u16string_view folder = state.request.atOneLocation
                                           ? std::u16string_view(state.request.outputDir)
                                           : parentPath(sourcePath);
    const std::u16string fileName = pathStem(sourcePath).append(toUtf16(kComponentExtension));
    assembleComponent(node, sourcePath, joinPath(folder, fileName), state);
}

void FlatBookAssembler::addHeadComponent(DOMElement& node, State& state) {
    const std::u16string navtitle = attributeOf(node, u"navtitle");
    std::u16string name = navtitle;
    if (name.empty()) {
        name = u"container" + toUtf16(std::to_string(state.containerCounter));
        ++state.containerCounter;
    }
    // A title may hold separators; what they make of the path has to be known before it is used.
    const std::u16string path =
        normalizePath(joinPath(state.request.outputDir, name.append(toUtf16(kComponentExtension))));
    if (isBelow(path, state.request.outputDir) && !leadsOutOf(path, state.request.outputDir)) {
        observeSeparators(navtitle, path, node);
        assembleComponent(node, {}, path, state);
    } else {
        ReportMessenger::instance().reportNoFileName(path, navtitle, node);
    }
}

void FlatBookAssembler::assembleComponent(DOMElement& node, const std::u16string& sourcePath,
                                          const std::u16string& outputPath, State& state) {
    if (!isShortEnough(outputPath)) {
        if (sourcePath.empty()) {
            ReportMessenger::instance().reportNoFileName(outputPath,
                                                         attributeView(node, u"navtitle"), node);
        } else {
            ReportMessenger::instance().reportCannotWrite(outputPath);
        }
        return;
    }
    if (RunObserver* const observer = RunObserver::existing()) {
        observer->component(outputPath, sourcePath, node);
    }
    CompositeDocRequest request;
    request.sourcePath = sourcePath;
    request.outputPath = outputPath;
    request.doctypeSystemId = state.request.doctypeSystemId;
    request.usePrint = state.request.usePrint;
    request.conditions.mergeEnabled = true;
    DOMDocument* const document =
        compositeAssembler_.assembleComposite(&node, state.keySpace, request);
    if (document) {
        state.documents.push_back(document);
        state.topicIds.mergeWithPrefix(request.topicIds, outputPath);
    }
}

}  // namespace marrowpress
