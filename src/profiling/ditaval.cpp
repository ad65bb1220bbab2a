#include "profiling/ditaval.h"

#include "dom/attributes.h"
#include "dom/element_walker.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;

/// The attributes of conditional processing, which fall under a default of exclude.
constexpr const char16_t* kFilterableAttributes[] = {u"audience", u"props", u"platform", u"product",
                                                     u"otherprops"};

}  // namespace

void DitaValReader::readDefaultAction(const DOMDocument& document) {
    const DefaultExcludeNodeFilter filter;
    const bool isExclude = ElementWalker(document.getDocumentElement(), filter).nextNode();
    defaultAction_ = isExclude ? DitaValAction::kExclude : DitaValAction::kInclude;
}

void DitaValReader::readAttributeRules(const DOMDocument& document) {
    const DefaultValNodeFilter filter;
    ElementWalker walker(document.getDocumentElement(), filter);
    while (const DOMElement* const prop = walker.nextNode()) {
        const std::u16string attribute = attributeOf(*prop, u"att");
        if (auto rule = createAttrValFilter(attribute, readAction(*prop))) {
            attrFilters_.try_emplace(attribute, std::move(rule));  // the first rule stands
        }
    }
}

void DitaValReader::readValueRules(const DOMDocument& document) {
    const DitaValPropNodeFilter filter;
    ElementWalker walker(document.getDocumentElement(), filter);
    while (const DOMElement* const prop = walker.nextNode()) {
        const std::u16string attribute = attributeOf(*prop, u"att");
        const std::u16string value = attributeOf(*prop, u"val");
        const DitaValAction action = readAction(*prop);
        const auto known = attrFilters_.find(attribute);
        if (known == attrFilters_.end()) {
            if (auto rule = filterForValue(attribute, value, action)) {
                attrFilters_.emplace(attribute, std::move(rule));
            }
        } else if (known->second->takesValueFor(action)) {
            known->second->addValue(value);
        }
    }
}

std::unique_ptr<DitaValExcludeFilter> DitaValReader::buildExcludeFilter() {
    if (defaultAction_ == DitaValAction::kExclude) {
        for (const char16_t* const attribute : kFilterableAttributes) {
            attrFilters_.try_emplace(attribute,
                                     createAttrValFilter(attribute, DitaValAction::kExclude));
        }
    }
    DitaValExcludeFilter::AttributeFilters filters;
    for (auto& [attribute, filter] : attrFilters_) {
        filters.push_back(std::move(filter));
    }
    attrFilters_.clear();
    defaultAction_ = DitaValAction::kOther;
    return std::make_unique<DitaValExcludeFilter>(std::move(filters));
}

/// The first rule for an attribute, made of a rule for one value; null when that only repeats the
/// default.
std::unique_ptr<DitaValAttrValFilter> DitaValReader::filterForValue(const std::u16string& attribute,
                                                                    const std::u16string& value,
                                                                    DitaValAction action) const {
    if (action == defaultAction_) {
        return nullptr;
    }
    switch (action) {
        case DitaValAction::kInclude:
            return std::make_unique<DitaValAttrValAcceptFilter>(attribute, value);
        case DitaValAction::kExclude:
            return std::make_unique<DitaValAttrValRejectFilter>(attribute, value);
        case DitaValAction::kOther:
            break;
    }
    return nullptr;
}

DitaValAction readAction(const DOMElement& prop) {
    const std::u16string_view action = attributeView(prop, u"action");
    if (action == u"include") {
        return DitaValAction::kInclude;
    }
    return action == u"exclude" ? DitaValAction::kExclude : DitaValAction::kOther;
}

std::unique_ptr<DitaValAttrValFilter> createAttrValFilter(const std::u16string& attribute,
                                                          DitaValAction action) {
    switch (action) {
        case DitaValAction::kInclude:
            return std::make_unique<DitaValAttrValRejectFilter>(attribute);
        case DitaValAction::kExclude:
            return std::make_unique<DitaValAttrValAcceptFilter>(attribute);
        case DitaValAction::kOther:
            break;
    }
    return nullptr;
}

}  // namespace marrowpress
