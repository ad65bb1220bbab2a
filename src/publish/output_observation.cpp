#include "publish/output_observation.h"

#include <algorithm>
#include <exception>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "application/run_observer.h"
#include "dom/attributes.h"
#include "dom/document_path.h"
#include "dom/nodes.h"
#include "publish/publish_result.h"
#include "references/conref_target.h"
#include "references/direct_references.h"
#include "references/document_kind.h"
#include "references/multimedia_node_filters.h"
#include "references/multimedia_references.h"
#include "references/node_filters.h"
#include "support/hrefs.h"
#include "support/paths.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "xml/document_store.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;

/// Whether `path` names a topic, as far as a name and the element's "format" tell.
bool namesTopic(std::u16string_view path, std::u16string_view format) {
    return path.ends_with(u".dita") ||
           (path.ends_with(u".xml") && (format.empty() || format == u"dita"));
}

bool isText(const DOMNode& node) {
    return node.getNodeType() == DOMNode::TEXT_NODE ||
           node.getNodeType() == DOMNode::CDATA_SECTION_NODE;
}

/// Whether a reader would see anything between the tags of `element`.
bool hasContent(const DOMElement& element) {
    for (const DOMNode* child = element.getFirstChild(); child; child = child->getNextSibling()) {
        const std::u16string_view text =
            isText(*child) ? domText(child->getNodeValue()) : std::u16string_view();
        if (asElement(child) || text.find_first_not_of(u" \t\r\n") != std::u16string_view::npos) {
            return true;
        }
    }
    return false;
}

/// The nearest "scope" of a link and the lists around it.
std::u16string_view scopeOf(const DOMElement& element) {
    for (const DOMElement* around = &element; around; around = asElement(around->getParentNode())) {
        const std::u16string_view scope = attributeView(*around, u"scope");
        if (!scope.empty()) {
            return scope;
        }
    }
    return {};
}

/// One look over the finished documents of a run.
class OutputObservation {
public:
    explicit OutputObservation(RunObserver& observer) : observer_(observer) {}

    void run(const std::vector<DOMDocument*>& documents);

private:
    struct Link {
        const DOMElement* element;
        std::u16string target;
    };

    void gather(DOMElement& root);
    void gatherElement(DOMElement& element, const DOMElement* topic);
    void gatherMedia(const DOMElement& element, std::u16string_view tagName);

    void observeLink(const Link& link);
    void observeInside(const Link& link, const HrefParts& parts);
    void observeOutside(const Link& link, const HrefParts& parts);
    bool isFragmentThere(const DOMDocument& document, const HrefParts& parts) const;
    void observeLeftConref(const DOMElement& element);
    bool isThere(const std::u16string& path);
    void fault(FaultCode code, const DOMElement& element, std::u16string_view target);

    RunObserver& observer_;
    TopicNodeFilter topics_;
    MultimediaRefAttrContainingNodeFilter media_;
    std::vector<Link> links_;
    std::vector<const DOMElement*> conrefs_;
    std::unordered_set<std::u16string> outputPaths_;
    std::unordered_set<std::u16string> topicIds_;
    /// "topic/element" of all elements with an id.
    std::unordered_set<std::u16string> elementIds_;
    std::unordered_map<std::u16string, bool> isThere_;
};

void OutputObservation::run(const std::vector<DOMDocument*>& documents) {
    for (const DOMDocument* const document : documents) {
        // A component of two references is in the list twice.
        if (document && document->getDocumentElement() &&
            outputPaths_.insert(documentPath(*document)).second) {
            gather(*document->getDocumentElement());
        }
    }
    for (const Link& link : links_) {
        observeLink(link);
    }
    for (const DOMElement* const element : conrefs_) {
        observeLeftConref(*element);
    }
}

/// Not by the walker: it asks for parents, which are dear, and here nothing changes on the way.
void OutputObservation::gather(DOMElement& root) {
    struct Step {
        DOMNode* node;
        const DOMElement* topic;
    };
    std::vector<Step> pending{{&root, nullptr}};
    while (!pending.empty()) {
        const Step step = pending.back();
        pending.pop_back();
        if (DOMNode* const next = step.node->getNextSibling(); next && step.node != &root) {
            pending.push_back({next, step.topic});
        }
        DOMElement* const element = asElement(step.node);
        if (!element) {
            continue;
        }
        const DOMElement* const topic = selects(topics_, element) ? element : step.topic;
        gatherElement(*element, topic);
        if (DOMNode* const child = element->getFirstChild()) {
            pending.push_back({child, topic});
        }
    }
}

void OutputObservation::gatherElement(DOMElement& element, const DOMElement* topic) {
    if (!element.hasAttributes()) {
        return;
    }
    const std::u16string_view tagName = domText(element.getTagName());
    const std::u16string_view id = attributeView(element, u"id");
    if (!id.empty() && topic == &element) {
        topicIds_.emplace(id);
    } else if (!id.empty() && topic) {
        elementIds_.insert(attributeOf(*topic, u"id").append(u"/").append(id));
    }
    const std::u16string_view href = attributeView(element, u"href");
    if (tagName == u"coderef") {
        fault(FaultCode::kNoEffect, element, u"coderef");
    }
    if (!href.empty()) {
        links_.push_back({&element, std::u16string(href)});
        if ((tagName == u"xref" || tagName == u"link") && !hasContent(element)) {
            fault(FaultCode::kNoEffect, element, u"link-text");
        }
    }
    if (!attributeView(element, u"conref").empty()) {
        conrefs_.push_back(&element);
    }
    if (!attributeView(element, u"conaction").empty()) {
        fault(FaultCode::kNoEffect, element, u"conaction");
    }
    gatherMedia(element, tagName);
}

void OutputObservation::gatherMedia(const DOMElement& element, std::u16string_view tagName) {
    if ((tagName == u"object" || tagName == u"param") && selects(media_, &element)) {
        const MultimediaNodeHandler& handler = multimediaNodeHandler(media_.getType(&element));
        links_.push_back({&element, handler.getRefValue(element)});
    }
}

void OutputObservation::observeLink(const Link& link) {
    const std::u16string_view scope = scopeOf(*link.element);
    if (scope == u"external" || scope == u"peer" || isExternalUri(link.target)) {
        return;
    }
    const HrefParts parts = splitHref(link.target);
    if (parts.path.empty() || outputPaths_.contains(std::u16string(parts.path))) {
        observeInside(link, parts);
    } else {
        observeOutside(link, parts);
    }
}

/// A link to a topic of the output: that it leads to one is why it was rewritten.
void OutputObservation::observeInside(const Link& link, const HrefParts& parts) {
    if (parts.elementId.empty() || !topicIds_.contains(std::u16string(parts.topicId))) {
        return;
    }
    const std::u16string id = std::u16string(parts.topicId).append(u"/").append(parts.elementId);
    if (!elementIds_.contains(id)) {
        fault(FaultCode::kFragmentNotFound, *link.element, link.target);
    }
}

void OutputObservation::observeOutside(const Link& link, const HrefParts& parts) {
    const std::u16string path(parts.path);
    if (!isThere(path)) {
        if (observer_.hasToldMissingFile(*link.element)) {
            return;
        }
        fault(FaultCode::kLinkTargetMissing, *link.element, path);
        return;
    }
    DocumentStore& store = DocumentStore::instance();
    const DOMDocument* const document = store.holds(path) ? store.getOrLoad(path) : nullptr;
    if (document && !parts.topicId.empty() && !isFragmentThere(*document, parts)) {
        fault(FaultCode::kFragmentNotFound, *link.element, link.target);
    } else if (namesTopic(parts.path, attributeView(*link.element, u"format"))) {
        fault(FaultCode::kTopicNotInOutput, *link.element, link.target);
    }
}

bool OutputObservation::isFragmentThere(const DOMDocument& document, const HrefParts& parts) const {
    const DOMElement* const element = elementOf(document, parts);
    // Behind "#" a link names a topic, unless it leads into a map.
    return element && (!parts.elementId.empty() || selects(topics_, element) ||
                       classifyDocument(&document) == DitaDocKind::DitaDocMap);
}

/// A content reference that the output keeps. Where its file could not be read, that was told.
void OutputObservation::observeLeftConref(const DOMElement& element) {
    const SourcePlaces& places = *SourcePlaces::existing();
    const SourcePlace start = places.placeOf(element);
    const std::u16string first = attributeOf(element, u"conref");
    std::vector<SourcePlace> ring{start};
    const DOMElement* reference = &element;
    while (reference) {
        const std::u16string target =
            makeAbsoluteHref(attributeView(*reference, u"conref"), *reference->getOwnerDocument());
        const HrefParts parts = splitHref(target);
        const std::u16string path(parts.path);
        DocumentStore& store = DocumentStore::instance();
        if (observer_.isUnread(path)) {
            return;
        }
        const DOMDocument* const document =
            path.empty() ? reference->getOwnerDocument()
                         : (store.holds(path) ? store.getOrLoad(path) : nullptr);
        reference = document ? elementOf(*document, parts) : nullptr;
        if (!reference || attributeView(*reference, u"conref").empty()) {
            break;
        }
        const SourcePlace place = places.placeOf(*reference);
        if (std::find(ring.begin(), ring.end(), place) != ring.end()) {
            observer_.fault({.code = FaultCode::kConrefLoop,
                             .element = &element,
                             .target = first,
                             .related = ring});
            return;
        }
        ring.push_back(place);
    }
    const std::u16string taken = observer_.takenConrefOf(element);
    observer_.fault({.code = FaultCode::kConrefOfConref,
                     .element = &element,
                     .target = taken.empty() ? first : taken,
                     .detail = first});
}

bool OutputObservation::isThere(const std::u16string& path) {
    const auto known = isThere_.find(path);
    if (known != isThere_.end()) {
        return known->second;
    }
    // A file that the system won't say anything about can't be told to be missing.
    bool isThere = true;
    try {
        isThere = pathExists(path);
    } catch (const std::exception&) {
        isThere = true;
    }
    return isThere_[path] = isThere;
}

void OutputObservation::fault(FaultCode code, const DOMElement& element,
                              std::u16string_view target) {
    observer_.fault({.code = code, .element = &element, .target = target});
}

}  // namespace

void observeOutput(RunObserver& observer, const PublishResult& result,
                   const std::u16string& mapPath) {
    OutputObservation(observer).run(result.finishedDocuments());
    if (observer.topicCount() > 0) {
        return;
    }
    const DOMDocument& map = DocumentStore::instance().mustLoad(mapPath);
    observer.fault({.code = FaultCode::kNoTopic,
                    .element = map.getDocumentElement(),
                    .target = mapPath,
                    .outlivesElement = true});
}

}  // namespace marrowpress
