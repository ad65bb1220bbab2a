#include "profiling/ditaval_filters.h"

#include <algorithm>

#include "application/run_observer.h"
#include "dom/attributes.h"
#include "dom/copies.h"
#include "dom/element_walker.h"
#include "references/direct_references.h"
#include "references/exclusion_filter.h"
#include "references/node_filters.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;
using xercesc::DOMNodeFilter;

}  // namespace

DOMNodeFilter::FilterAction DitaValNodeFilter::acceptElement(const DOMElement& element) const {
    if (domText(element.getTagName()) != u"prop") {
        return FILTER_SKIP;
    }
    const bool isSelected = selects(attributeView(element, u"att"), attributeView(element, u"val"),
                                    attributeView(element, u"action"));
    return isSelected ? FILTER_ACCEPT : FILTER_REJECT;
}

bool DitaValPropNodeFilter::selects(std::u16string_view attribute, std::u16string_view value,
                                    std::u16string_view /*action*/) const {
    return !attribute.empty() && !value.empty();
}

bool DefaultExcludeNodeFilter::selects(std::u16string_view attribute, std::u16string_view value,
                                       std::u16string_view action) const {
    return action == u"exclude" && attribute.empty() && value.empty();
}

bool DefaultValNodeFilter::selects(std::u16string_view attribute, std::u16string_view value,
                                   std::u16string_view /*action*/) const {
    return !attribute.empty() && value.empty();
}

DitaValAttrValFilter::DitaValAttrValFilter(std::u16string attributeName, std::u16string value)
    : attributeName_(std::move(attributeName)) {
    if (!value.empty()) {
        addValue(std::move(value));
    }
}

DOMNodeFilter::FilterAction DitaValAttrValFilter::acceptElement(const DOMElement& element) const {
    const std::u16string_view value = attributeView(element, attributeName_.c_str());
    return value.empty() ? FILTER_SKIP : acceptTokens(splitTokens(value));
}

bool DitaValAttrValAcceptFilter::takesValueFor(DitaValAction action) const {
    return action == DitaValAction::kInclude;
}

DOMNodeFilter::FilterAction DitaValAttrValAcceptFilter::acceptTokens(const Tokens& tokens) const {
    const bool stays = std::any_of(tokens.begin(), tokens.end(),
                                   [&](std::u16string_view token) { return holds(token); });
    return stays ? FILTER_ACCEPT : FILTER_REJECT;
}

bool DitaValAttrValRejectFilter::takesValueFor(DitaValAction action) const {
    return action == DitaValAction::kExclude;
}

DOMNodeFilter::FilterAction DitaValAttrValRejectFilter::acceptTokens(const Tokens& tokens) const {
    const bool stays = std::any_of(tokens.begin(), tokens.end(),
                                   [&](std::u16string_view token) { return !holds(token); });
    return stays ? FILTER_ACCEPT : FILTER_REJECT;
}

DOMNodeFilter::FilterAction DitaValExcludeFilter::acceptNode(const xercesc::DOMNode* node) const {
    const bool falls = std::any_of(filters_.begin(), filters_.end(), [&](const auto& filter) {
        return filter->acceptNode(node) == FILTER_REJECT;
    });
    return falls ? FILTER_ACCEPT : FILTER_SKIP;
}

std::u16string_view DitaValExcludeFilter::attributeThatExcludes(const DOMElement& element) const {
    const auto rule = std::find_if(filters_.begin(), filters_.end(), [&](const auto& filter) {
        return filter->acceptNode(&element) == FILTER_REJECT;
    });
    return rule == filters_.end() ? std::u16string_view() : (*rule)->attributeName();
}

void markDraftComments(xercesc::DOMDocument& document) {
    const ElemTagBasedElementNodeFilter draftComments(u"draft-comment");
    ElementWalker walker(document.getDocumentElement(), draftComments);
    while (DOMElement* const comment = walker.nextNode()) {
        if (!comment->hasAttribute(u"translate")) {
            comment->setAttribute(u"translate", u"no");
        }
    }
}

void observeConditionValues(RunObserver& observer, const xercesc::DOMDocument& document) {
    const auto* const profile =
        dynamic_cast<const DitaValExcludeFilter*>(ExclusionFilterHolder::instance().filter());
    DOMElement* const root = document.getDocumentElement();
    for (DOMElement* element = profile ? root : nullptr; element;
         element = nextInSubtree(element, *root)) {
        for (const auto& rule : profile->attributeFilters()) {
            const std::u16string& attribute = rule->attributeName();
            for (const std::u16string_view value :
                 splitTokens(attributeView(*element, attribute.c_str()))) {
                observer.conditionValue(attribute, value, *element);
            }
        }
    }
}

void observeExcluded(RunObserver& observer, const DOMElement& element) {
    const auto* const profile =
        dynamic_cast<const DitaValExcludeFilter*>(ExclusionFilterHolder::instance().filter());
    const std::u16string_view href = attributeView(element, u"href");
    observer.excluded(element,
                      href.empty()
                          ? std::u16string(observer.sourceFileOf(attributeView(element, u"id")))
                          : makeAbsoluteHref(href, *element.getOwnerDocument()),
                      profile ? profile->attributeThatExcludes(element) : std::u16string_view());
}

void removeExcludedElements(xercesc::DOMDocument& document) {
    const DOMNodeFilter* const excluded = ExclusionFilterHolder::instance().filter();
    if (!excluded) {
        return;
    }
    markDraftComments(document);
    const std::vector<DOMElement*> elements =
        collectElements(document.getDocumentElement(), *excluded);
    if (RunObserver* const observer = RunObserver::existing()) {
        observeConditionValues(*observer, document);
        for (const DOMElement* const element : elements) {
            observeExcluded(*observer, *element);
        }
    }
    removeElements(elements);
}

}  // namespace marrowpress
