#include "publish/output_observation.h"

#include <exception>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "application/run_observer.h"
#include "dom/attributes.h"
#include "dom/document_path.h"
#include "dom/nodes.h"
#include "publish/left_conrefs.h"
#include "publish/publish_result.h"
#include "references/conref_target.h"
#include "references/document_kind.h"
#include "references/key_space.h"
#include "references/multimedia_node_filters.h"
#include "references/multimedia_references.h"
#include "references/node_filters.h"
#include "references/published_content.h"
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

/// By which an object refers, and what a link of a medium is known by.
constexpr const XMLCh* kMediaAttribute = u"data";

/// Whether `link` includes code, of whatever file: neither ids nor topics are meant.
bool includesCode(const DOMElement& link) {
    return domText(link.getTagName()) == u"coderef";
}

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

/// One look over the finished documents of a run.
class OutputObservation {
public:
    OutputObservation(RunObserver& observer, const KeySpace& keySpace)
        : observer_(observer), keySpace_(keySpace) {}

    void run(const std::vector<DOMDocument*>& documents);

    /// Whether a topic of the sources is in the documents.
    bool hasTopic() const noexcept { return hasTopic_; }

private:
    struct Link {
        const DOMElement* element;
        const XMLCh* attribute;  ///< A literal: by which it refers.
        std::u16string target;
    };

    void gather(DOMElement& root);
    void gatherElement(DOMElement& element, const DOMElement* topic);
    void gatherMedia(const DOMElement& element, std::u16string_view tagName);

    void observeLink(const Link& link);
    void observeTarget(const Link& link, std::u16string_view path);
    void observeInside(const Link& link, const HrefParts& parts);
    void observeOutside(const Link& link, const HrefParts& parts);
    void observeMissing(const Link& link, std::u16string_view path);
    static std::u16string cutPartOf(const Link& link, std::u16string_view path);
    void observeFragment(const Link& link, std::u16string_view topicIdAround = {});
    void observeKeys();
    static std::u16string topicAroundElement(const HrefParts& parts);
    bool isFragmentMissing(const HrefParts& parts) const;
    bool isFragmentThere(const DOMDocument& document, const HrefParts& parts) const;
    bool isThere(const std::u16string& path);
    void fault(FaultCode code, const Link& link, std::u16string_view target);
    void noEffect(const DOMElement& element, std::u16string_view what);

    RunObserver& observer_;
    const KeySpace& keySpace_;
    TopicNodeFilter topics_;
    ImageNodeFilter images_;
    MultimediaRefAttrContainingNodeFilter media_;
    std::vector<Link> links_;
    std::vector<const DOMElement*> conrefs_;
    std::unordered_set<std::u16string> outputPaths_;
    std::unordered_set<std::u16string> topicIds_;
    /// "topic/element" of all elements with an id.
    std::unordered_set<std::u16string> elementIds_;
    std::unordered_map<std::u16string, bool> isThere_;
    bool hasTopic_ = false;
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
        observeLeftConref(observer_, keySpace_, *element);
    }
    observeKeys();
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
        hasTopic_ = hasTopic_ || observer_.isTopicId(id);
    } else if (!id.empty() && topic) {
        elementIds_.insert(attributeOf(*topic, u"id").append(u"/").append(id));
    }
    const std::u16string_view href = attributeView(element, u"href");
    if (includesCode(element)) {
        noEffect(element, u"coderef");
    }
    if (!href.empty()) {
        links_.push_back({&element, u"href", std::u16string(href)});
        if ((tagName == u"xref" || tagName == u"link") && !hasContent(element)) {
            noEffect(element, u"link-text");
        }
    }
    if (!attributeView(element, u"conref").empty()) {
        conrefs_.push_back(&element);
    }
    if (!attributeView(element, u"conaction").empty()) {
        noEffect(element, u"conaction");
    }
    gatherMedia(element, tagName);
}

void OutputObservation::gatherMedia(const DOMElement& element, std::u16string_view tagName) {
    if ((tagName == u"object" || tagName == u"param") && selects(media_, &element)) {
        const MultimediaNodeHandler& handler = multimediaNodeHandler(media_.getType(&element));
        links_.push_back({&element, kMediaAttribute, handler.getRefValue(element)});
    }
}

void OutputObservation::observeLink(const Link& link) {
    const DOMElement* const definition = observer_.keyLinkOf(*link.element);
    if (leadsElsewhere(*link.element) || (definition && leadsElsewhere(*definition)) ||
        isExternalUri(link.target)) {
        return;
    }
    const HrefParts parts = splitHref(link.target);
    if (parts.path.empty() || outputPaths_.contains(std::u16string(parts.path))) {
        observeTarget(link, observer_.sourceFileOf(parts.topicId));
        observeInside(link, parts);
    } else {
        observeTarget(link, parts.path);
        observeOutside(link, parts);
    }
}

/// Tells to which file the link leads, be it that of a topic in the output.
void OutputObservation::observeTarget(const Link& link, std::u16string_view path) {
    if (path.empty() || !RunObserver::existingForReferences()) {
        return;
    }
    const bool isImage = link.attribute == kMediaAttribute || selects(images_, link.element);
    observer_.fileReference(isImage ? ReferenceKind::kImage : ReferenceKind::kLink, path,
                            observer_.writerOf(*link.element, link.attribute));
}

/// A link to a topic that was taken in: that is why it was rewritten.
void OutputObservation::observeInside(const Link& link, const HrefParts& parts) {
    if (!observer_.isTopicId(parts.topicId)) {
        return;
    }
    if (!topicIds_.contains(std::u16string(parts.topicId))) {
        // The profile took it out again.
        fault(FaultCode::kTopicNotInOutput, link, link.target);
        return;
    }
    const std::u16string id = std::u16string(parts.topicId).append(u"/").append(parts.elementId);
    if (!parts.elementId.empty() && !elementIds_.contains(id)) {
        observeFragment(link);
    }
}

void OutputObservation::observeOutside(const Link& link, const HrefParts& parts) {
    const std::u16string path(parts.path);
    if (!isThere(path)) {
        observeMissing(link, path);
    } else if (includesCode(*link.element)) {
        return;
    } else if (isFragmentMissing(parts)) {
        observeFragment(link, topicAroundElement(parts));
    } else if (namesTopic(parts.path, attributeView(*link.element, u"format"))) {
        fault(FaultCode::kTopicNotInOutput, link, link.target);
    }
}

void OutputObservation::observeMissing(const Link& link, std::u16string_view path) {
    const DOMElement* const definition = observer_.keyLinkOf(*link.element);
    const std::u16string cutPart = cutPartOf(link, path);
    if (observer_.hasToldMissingFile(*link.element, isPublished) ||
        (definition && observer_.hasToldMissingFile(*definition, isPublished))) {
        return;
    }
    if (cutPart.empty()) {
        fault(FaultCode::kLinkTargetMissing, link, path);
    } else {
        observer_.fault({.code = FaultCode::kPathIsCut,
                         .element = &observer_.writerOf(*link.element, link.attribute),
                         .target = cutPart,
                         .detail = cutPart.find(u'#') < cutPart.find(u'\\') ? u"#" : u"\\"});
    }
}

/// The part that the link is cut at, if it was meant for a name with a sign that ends a path or
/// parts it; empty otherwise.
std::u16string OutputObservation::cutPartOf(const Link& link, std::u16string_view path) {
    std::u16string part = partThatCutsReferences(link.target);
    for (const std::u16string_view meant : {path, std::u16string_view(link.target)}) {
        if (part.empty()) {
            part = partThatHadBackslash(meant);
        }
    }
    return part;
}

/// Nothing of a fragment that a key definition names: that is told once, of the definition.
void OutputObservation::observeFragment(const Link& link, std::u16string_view topicIdAround) {
    if (!observer_.keyLinkOf(*link.element)) {
        observer_.fault({.code = FaultCode::kFragmentNotFound,
                         .element = &observer_.writerOf(*link.element, link.attribute),
                         .target = link.target,
                         .detail = topicIdAround});
    }
}

/// Tells of key definitions whose file is read and does not have their fragment.
void OutputObservation::observeKeys() {
    const DOMElement& root = *keySpace_.document().getDocumentElement();
    for (const DOMElement* definition = firstElementChild(root); definition;
         definition = nextElementSibling(*definition)) {
        const std::u16string href = attributeOf(*definition, u"href");
        const bool isOwnLink = !observer_.keyLinkOf(*definition) && !leadsElsewhere(*definition);
        const HrefParts parts = splitHref(href);
        if (isOwnLink && isFragmentMissing(parts)) {
            const std::u16string around = topicAroundElement(parts);
            observer_.fault({.code = FaultCode::kFragmentNotFound,
                             .element = definition,
                             .target = href,
                             .detail = around});
        }
    }
}

/// The topic of the element whose id stands where that of a topic is wanted; empty where none does.
std::u16string OutputObservation::topicAroundElement(const HrefParts& parts) {
    const DOMDocument* const document =
        DocumentStore::instance().getOrLoad(std::u16string(parts.path));
    return parts.elementId.empty() && document ? topicIdAround(*document, parts.topicId)
                                               : std::u16string();
}

/// Whether the file is loaded and has no element with these ids.
bool OutputObservation::isFragmentMissing(const HrefParts& parts) const {
    const std::u16string path(parts.path);
    DocumentStore& store = DocumentStore::instance();
    const DOMDocument* const document = store.holds(path) ? store.getOrLoad(path) : nullptr;
    return document && !parts.topicId.empty() && !isFragmentThere(*document, parts);
}

bool OutputObservation::isFragmentThere(const DOMDocument& document, const HrefParts& parts) const {
    const DOMElement* const element = elementOf(document, parts);
    // Behind "#" a link names a topic, unless it leads into a map.
    return element && (!parts.elementId.empty() || selects(topics_, element) ||
                       classifyDocument(&document) == DitaDocKind::DitaDocMap);
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

void OutputObservation::fault(FaultCode code, const Link& link, std::u16string_view target) {
    observer_.fault({.code = code,
                     .element = &observer_.writerOf(*link.element, link.attribute),
                     .target = target});
}

void OutputObservation::noEffect(const DOMElement& element, std::u16string_view what) {
    observer_.fault({.code = FaultCode::kNoEffect, .element = &element, .target = what});
}

}  // namespace

void observeOutput(RunObserver& observer, const PublishResult& result, const KeySpace& keySpace,
                   const std::u16string& mapPath) {
    OutputObservation observation(observer, keySpace);
    observation.run(result.finishedDocuments());
    if (observation.hasTopic()) {
        return;
    }
    const DOMDocument& map = DocumentStore::instance().mustLoad(mapPath);
    observer.fault({.code = FaultCode::kNoTopic,
                    .element = map.getDocumentElement(),
                    .target = mapPath,
                    .outlivesElement = true});
}

}  // namespace marrowpress
