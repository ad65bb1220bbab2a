#include "references/conref_resolution.h"

#include <string>
#include <utility>
#include <vector>

#include "application/messengers.h"
#include "application/run_observer.h"
#include "dom/attributes.h"
#include "dom/copies.h"
#include "dom/document_path.h"
#include "dom/element_walker.h"
#include "dom/nesting_depth.h"
#include "dom/nodes.h"
#include "references/conref_attributes.h"
#include "references/conref_lineage.h"
#include "references/conref_target.h"
#include "references/copied_references.h"
#include "references/reference_paths.h"
#include "support/hrefs.h"
#include "xml/document_store.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;

void removeConref(DOMElement& element) {
    element.removeAttribute(u"conref");
    element.removeAttribute(u"conrefend");
}

/// Tells which of the attributes that faults are about `element` is to get from `start`.
void observeTakenAttributes(const DOMElement& element, const DOMElement& start) {
    RunObserver* const observer = RunObserver::existing();
    if (!observer) {
        return;
    }
    for (const XMLCh* const attribute :
         {u"href", u"data", u"keyref", u"conkeyref", u"datakeyref"}) {
        if (!element.hasAttribute(attribute) && start.hasAttribute(attribute)) {
            observer->noteTakenAttribute(element, attribute, start);
        }
    }
}

/// Tells that `copy` stands for `member`, which is an element of a range.
void observeRangeMember(const DOMElement& member, const DOMElement& copy, const CopyCause& cause) {
    if (SourcePlaces* const places = SourcePlaces::existing()) {
        places->recordCopy(member, copy, cause);
    }
}

}  // namespace

/// One walk over the content references of a subtree.
class ConrefWalk {
public:
    ConrefWalk(const ConrefProcessor& processor, DOMDocument& document, KeySpace& keySpace,
               TopicIdMap& topicIds)
        : processor_(processor), document_(document), keySpace_(keySpace), topicIds_(topicIds) {}

    /// Follows the reference of `element`, on which the walk stands.
    void resolve(DOMElement& element);

private:
    /// What a reference leads to: a range of siblings that begins with an element.
    struct Target {
        DOMDocument& document;
        DOMElement& start;
        DOMNode* stop;    ///< the first node behind the range; null for the end of the siblings
        bool isExternal;  ///< the reference names a file
        CopyCause cause;
    };

    void reportUncopied(const DOMElement& element, const DOMElement& start,
                        std::u16string_view id) const;
    void observeFollowed(const DOMElement& element, const DOMElement& start,
                         const HrefParts& reference) const;
    std::vector<SourcePlace> ringOf(const DOMElement& element, const DOMElement& start) const;
    DOMElement* targetOf(const DOMDocument& document, const HrefParts* parts,
                         const DOMElement& element);
    DOMDocument* targetDocument(const HrefParts& reference, const DOMElement& element) const;
    void replace(DOMElement& element, const Target& target);
    void insertRange(DOMElement& element, const Target& target);
    void insertMember(DOMElement& member, const DOMElement& element, DOMNode* before,
                      const Target& target);
    void copyContent(DOMElement& to, DOMElement& from, const CopyCause& cause);
    void adopt(DOMElement& copy, const Target& target);

    const ConrefProcessor& processor_;
    DOMDocument& document_;
    KeySpace& keySpace_;
    TopicIdMap& topicIds_;
    ConrefLineage lineage_;
    ConrefTargets targets_;
};

void ConrefWalk::resolve(DOMElement& element) {
    const std::u16string conref = attributeOf(element, u"conref");
    const std::u16string conrefend = attributeOf(element, u"conrefend");
    const HrefParts reference = splitHref(conref);
    const HrefParts rangeEnd = splitHref(conrefend);
    DOMDocument* const document = targetDocument(reference, element);
    if (!document) {
        return;
    }
    if (lineage_.isCopy(element)) {
        CopiedReferences::instance().follow();
    }
    DOMElement* const start = targetOf(*document, &reference, element);
    // The start's content takes the element's place.
    if (start && (lineage_.isEndless(element, *start) ||
                  wouldNestTooDeeply(element.getParentNode(), *start))) {
        reportUncopied(element, *start,
                       reference.elementId.empty() ? reference.topicId : reference.elementId);
        removeConref(element);
        return;
    }
    const DOMElement* const end =
        targetOf(*document, conrefend.empty() ? nullptr : &rangeEnd, element);
    if (!start) {
        removeConref(element);
        return;
    }
    const bool isRange = end && end->getParentNode() == start->getParentNode();
    if (!isRange && !conrefend.empty()) {
        ReportMessenger::instance().reportInvalidConrefEnd(&element);
    }
    DOMNode* const stop = isRange ? end->getNextSibling() : start->getNextSibling();
    if (stop == start) {
        removeConref(element);
        return;
    }
    observeFollowed(element, *start, reference);
    replace(element,
            {*document, *start, stop, !reference.path.empty(), {&element, u"conref", conref}});
}

DOMElement* ConrefWalk::targetOf(const DOMDocument& document, const HrefParts* parts,
                                 const DOMElement& element) {
    DOMElement* const target = targets_.find(document, parts, element);
    const std::size_t searched = targets_.takeSearched();
    if (lineage_.isCopy(element)) {
        CopiedReferences::instance().search(searched);
    }
    return target;
}

/// Message 109 for a target that must not be copied, though it is there.
void ConrefWalk::reportUncopied(const DOMElement& element, const DOMElement& start,
                                std::u16string_view id) const {
    const std::u16string_view tagName = domText(element.getTagName());
    const DOMDocument& target = *start.getOwnerDocument();
    if (!lineage_.isEndless(element, start)) {
        ReportMessenger::instance().reportElementNotFound(tagName, id, target, &element);
        return;
    }
    ReportMessenger::instance().reportConrefLoop(tagName, id, target, element,
                                                 ringOf(element, start));
}

/// Tells what the reference leads to, and of one to an element that it is or stands in: it loses
/// its own content, and gets none.
void ConrefWalk::observeFollowed(const DOMElement& element, const DOMElement& start,
                                 const HrefParts& reference) const {
    RunObserver* const observer = RunObserver::existing();
    if (!observer) {
        return;
    }
    observer->noteConrefTarget(element, start);
    if (isWithin(element, start)) {
        const std::u16string target =
            pathWithIds(*start.getOwnerDocument(), reference.topicId, reference.elementId);
        observer->fault({.code = FaultCode::kConrefLoop,
                         .element = &element,
                         .target = target,
                         .related = ringOf(element, start)});
    }
}

/// The places of the references that lead to each other; none while nobody observes the run.
std::vector<SourcePlace> ConrefWalk::ringOf(const DOMElement& element,
                                            const DOMElement& start) const {
    std::vector<SourcePlace> ring;
    if (const SourcePlaces* const places = SourcePlaces::existing()) {
        for (const DOMElement* const reference : lineage_.ringOf(element, start)) {
            ring.push_back(places->placeOf(*reference));
        }
    }
    return ring;
}

/// The document that the reference names, its own where it names none; null when it can't be
/// loaded.
DOMDocument* ConrefWalk::targetDocument(const HrefParts& reference,
                                        const DOMElement& element) const {
    const std::u16string path =
        reference.path.empty() ? std::u16string() : toAbsolutePath(reference.path, document_);
    if (path.empty()) {
        return &document_;
    }
    if (RunObserver* const observer = RunObserver::existingForReferences()) {
        observer->fileReference(ReferenceKind::kConref, path, element);
    }
    return DocumentStore::instance().getOrLoad(path, &element);
}

void ConrefWalk::replace(DOMElement& element, const Target& target) {
    lineage_.follow(element);
    targets_.noteChange(element);
    removeChildren(element);
    removeConref(element);
    insertRange(element, target);
    copyContent(element, target.start, target.cause);
    observeTakenAttributes(element, target.start);
    mergeAttributes(element, target.start);
    if (RunObserver* const observer = RunObserver::existing();
        observer && element.hasAttribute(u"conref")) {
        observer->noteTakenConref(element, target.cause.target);
    }
    lineage_.recordTakenReference(element, target.start);
    adopt(element, target);
}

/// Puts copies of the range behind its start behind `element`. Throws where `element` is the root:
/// a document has no room beside it.
void ConrefWalk::insertRange(DOMElement& element, const Target& target) {
    DOMNode* const parent = element.getParentNode();
    DOMNode* const before = element.getNextSibling();
    // Listed first, so that no copy becomes part of the range that it is made from.
    for (DOMNode* const member : siblingsFrom(target.start.getNextSibling(), target.stop)) {
        DOMElement* const memberElement = asElement(member);
        if (!memberElement) {
            parent->insertBefore(importCopy(document_, *member, target.cause), before);
        } else if (wouldNestTooDeeply(parent, *memberElement)) {
            ReportMessenger::instance().reportElementNotFound(domText(memberElement->getTagName()),
                                                              attributeView(*memberElement, u"id"),
                                                              target.document, &element);
        } else {
            insertMember(*memberElement, element, before, target);
        }
    }
}

void ConrefWalk::insertMember(DOMElement& member, const DOMElement& element, DOMNode* before,
                              const Target& target) {
    DOMElement& copy = *document_.createElement(member.getTagName());
    observeRangeMember(member, copy, target.cause);
    mergeAttributes(copy, element);
    element.getParentNode()->insertBefore(&copy, before);
    lineage_.recordRangeMember(member, copy);
    copyContent(copy, member, target.cause);
    mergeAttributes(copy, member);
    adopt(copy, target);
}

void ConrefWalk::copyContent(DOMElement& to, DOMElement& from, const CopyCause& cause) {
    for (DOMNode* const child : childrenOf(from)) {
        DOMNode* const copy = importCopy(document_, *child, cause);
        // Before it is appended: `to` may stand in `child`, which then had another shape.
        if (DOMElement* const copiedElement = asElement(copy)) {
            lineage_.recordContent(*asElement(child), *copiedElement, from);
        }
        to.appendChild(copy);
    }
}

/// Brings what came from another file to the state of the rest of the document.
void ConrefWalk::adopt(DOMElement& copy, const Target& target) {
    if (target.isExternal) {
        processor_.normalizer_.normalizeSubtree(&copy, target.document, topicIds_);
        processor_.keyrefs_.resolveAllKeyrefs(&copy, keySpace_);
        lineage_.recordPulledContent(copy);
        processor_.updater_.rewriteReferences(&copy, topicIds_);
    }
    targets_.noteChange(copy);
}

void ConrefProcessor::resolveConrefs(DOMElement* root, KeySpace& keySpace,
                                     TopicIdMap& topicIds) const {
    if (!root) {
        return;
    }
    ConrefWalk walk(*this, *root->getOwnerDocument(), keySpace, topicIds);
    // Live, so that references in what was copied are followed as well.
    ElementWalker walker(root, conrefFilter_);
    while (DOMElement* const element = walker.nextNode()) {
        walk.resolve(*element);
    }
}

}  // namespace marrowpress
