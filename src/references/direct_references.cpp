#include "references/direct_references.h"

#include <algorithm>
#include <cassert>
#include <memory>
#include <vector>

#include "application/run_observer.h"
#include "dom/attributes.h"
#include "dom/document_path.h"
#include "dom/element_walker.h"
#include "references/multimedia_references.h"
#include "references/reference_paths.h"
#include "support/hrefs.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;

/// A handler of the attribute that a derived class names.
class NamedRefAttrHandler : public DirectRefAttrHandler {
public:
    std::u16string getRefValue(const DOMElement& element) const override {
        return attributeOf(element, name_);
    }
    void setRefValue(DOMElement& element, const std::u16string& value) const override {
        setAttribute(element, name_, value);
    }

protected:
    NamedRefAttrHandler(std::uint32_t type, const XMLCh* name)
        : DirectRefAttrHandler(type), name_(name) {}

private:
    const XMLCh* name_;
};

class HrefAttrHandler final : public NamedRefAttrHandler {
public:
    HrefAttrHandler() : NamedRefAttrHandler(1, u"href") {}
};

class ConrefAttrHandler final : public NamedRefAttrHandler {
public:
    ConrefAttrHandler() : NamedRefAttrHandler(2, u"conref") {}
};

class ConrefendAttrHandler final : public NamedRefAttrHandler {
public:
    ConrefendAttrHandler() : NamedRefAttrHandler(4, u"conrefend") {}
};

class XtrfAttrHandler final : public NamedRefAttrHandler {
public:
    XtrfAttrHandler() : NamedRefAttrHandler(8, u"xtrf") {}
};

using AttributeHandlers = std::vector<std::unique_ptr<DirectRefAttrHandler>>;

AttributeHandlers makeAttributeHandlers() {
    AttributeHandlers handlers;
    handlers.push_back(std::make_unique<HrefAttrHandler>());
    handlers.push_back(std::make_unique<ConrefAttrHandler>());
    handlers.push_back(std::make_unique<ConrefendAttrHandler>());
    handlers.push_back(std::make_unique<XtrfAttrHandler>());
    return handlers;
}

/// Calls `change` with each direct reference below and including `root`, attribute by attribute in
/// the filter's order, and sets what it gives, unless that is nothing.
template <class Change>
void changeDirectRefs(DOMElement* root, const DirectRefAttrContainingNodeFilter& filter,
                      Change&& change) {
    ElementWalker walker(root, filter);
    while (DOMElement* const element = walker.nextNode()) {
        for (const std::uint32_t bit : DirectRefAttrContainingNodeFilter::bits()) {
            const DirectRefAttrHandler& handler = directRefAttrHandler(bit);
            const std::u16string value = handler.getRefValue(*element);
            const std::u16string changed = value.empty() ? value : change(value);
            if (!changed.empty()) {
                handler.setRefValue(*element, changed);
            }
        }
    }
}

/// The text that replaces `value`; empty when its target isn't part of the publication.
std::u16string rewritten(std::u16string_view value, const TopicIdMap& topicIds) {
    const HrefParts parts = splitHref(value);
    std::u16string location = topicIds.find(joinHref(parts));
    if (!location.empty() && !parts.elementId.empty()) {
        location += u'/';
        location += parts.elementId;
    }
    return location;
}

}  // namespace

const DirectRefAttrHandler& directRefAttrHandler(std::uint32_t type) {
    static const AttributeHandlers handlers = makeAttributeHandlers();
    const auto found = std::find_if(handlers.begin(), handlers.end(),
                                    [&](const auto& handler) { return handler->type() == type; });
    assert(found != handlers.end());
    return **found;
}

void ReferenceNormalizer::normalizeSubtree(DOMElement* root, const DOMDocument& base,
                                           TopicIdMap& topicIds) const {
    regenerateTopicIds(root, documentPath(base), topicIds);
    makeDirectRefsAbsolute(root, base);
    makeMultimediaRefsAbsolute(root, base);
}

void ReferenceNormalizer::regenerateTopicIds(DOMElement* root, const std::u16string& basePath,
                                             TopicIdMap& topicIds) const {
    ElementWalker walker(root, idFilter_);
    while (DOMElement* const element = walker.nextNode()) {
        if (!selects(topicFilter_, element)) {
            continue;
        }
        const std::u16string oldId = attributeOf(*element, u"id");
        const std::u16string newId = TopicIdGenerator::instance().nextTopicId();
        element->setAttribute(u"id", newId.c_str());
        // A topic that is taken in again gets an id of its own, but references lead to the first.
        const std::u16string source = std::u16string(basePath).append(u"#").append(oldId);
        topicIds.add(source, u"#" + newId);
        if (RunObserver* const observer = RunObserver::existing()) {
            observer->noteTopicId(newId, source);
        }
    }
}

void ReferenceNormalizer::makeDirectRefsAbsolute(DOMElement* root, const DOMDocument& base) const {
    changeDirectRefs(root, directRefFilter_,
                     [&](const std::u16string& value) { return makeAbsoluteHref(value, base); });
}

void ReferenceNormalizer::makeMultimediaRefsAbsolute(DOMElement* root,
                                                     const DOMDocument& base) const {
    ElementWalker walker(root, multimediaRefFilter_);
    while (DOMElement* const element = walker.nextNode()) {
        const MultimediaNodeHandler& handler =
            multimediaNodeHandler(multimediaRefFilter_.getType(element));
        handler.setRefValue(*element, makeAbsoluteHref(handler.getRefValue(*element), base));
    }
}

std::u16string makeAbsoluteHref(std::u16string_view value, const DOMDocument& document) {
    const std::u16string_view path = splitHref(value).path;
    return toAbsolutePath(path, document).append(value.substr(path.size()));
}

void ReferenceUpdater::rewriteReferences(DOMElement* root, const TopicIdMap& topicIds) const {
    changeDirectRefs(root, directRefFilter_,
                     [&](const std::u16string& value) { return rewritten(value, topicIds); });
}

}  // namespace marrowpress
