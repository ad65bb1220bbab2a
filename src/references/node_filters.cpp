#include "references/node_filters.h"

#include <algorithm>

#include "dom/attributes.h"
#include "references/exclusion_filter.h"

namespace marrowpress {
namespace {

using xercesc::DOMElement;
using xercesc::DOMNodeFilter;
using FilterAction = DOMNodeFilter::FilterAction;

/// How many characters open a class value: a sign and a blank.
constexpr std::size_t kClassOpening = 2;

}  // namespace

bool ClassBasedElementNodeFilter::fits(const DOMElement& element,
                                       std::u16string_view classValue) const {
    if (classValue.empty()) {
        const std::u16string_view tagName = domText(element.getTagName());
        return std::find(elementNames_.begin(), elementNames_.end(), tagName) !=
               elementNames_.end();
    }
    return classValue.size() >= classToken_.size() && classValue.size() >= kClassOpening &&
           classValue.substr(kClassOpening, classToken_.size()) == classToken_;
}

FilterAction ClassBasedElementNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(fits(element, attributeView(element, u"class")));
}

TopicNodeFilter::TopicNodeFilter()
    : ClassBasedElementNodeFilter(u"topic/topic",
                                  {u"topic", u"concept", u"reference", u"task", u"glossentry",
                                   u"glossgroup", u"troubleshooting"}) {}

MapNodeFilter::MapNodeFilter() : ClassBasedElementNodeFilter(u"map/map", {u"map", u"bookmap"}) {}

TopicrefNodeFilter::TopicrefNodeFilter()
    : ClassBasedElementNodeFilter(u"map/topicref ", {u"topicmeta", u"keydef", u"mapref"}) {}

TopicmetaNodeFilter::TopicmetaNodeFilter()
    : ClassBasedElementNodeFilter(u"map/topicmeta ", {u"topicmeta"}) {}

TopicheadNodeFilter::TopicheadNodeFilter()
    : ClassBasedElementNodeFilter(u"map/topicref mapgroup-d/topichead ",
                                  {u"map/topicref mapgroup-d/topichead "}) {}

TitleNodeFilter::TitleNodeFilter() : ClassBasedElementNodeFilter(u"topic/title ", {u"title"}) {}

BookTitleNodeFilter::BookTitleNodeFilter()
    : ClassBasedElementNodeFilter(u"topic/title bookmap/booktitle ", {u"booktitle"}) {}

FilterAction BookTitleNodeFilter::acceptElement(const DOMElement& element) const {
    const FilterAction action = ClassBasedElementNodeFilter::acceptElement(element);
    return action == FILTER_ACCEPT && isExcluded(element) ? FILTER_REJECT : action;
}

ImageNodeFilter::ImageNodeFilter() : ClassBasedElementNodeFilter(u"topic/image ", {u"image"}) {}

ObjectNodeFilter::ObjectNodeFilter() : ClassBasedElementNodeFilter(u"topic/object ", {u"object"}) {}

ParamNodeFilter::ParamNodeFilter() : ClassBasedElementNodeFilter(u"topic/param ", {u"param"}) {}

XrefNodeFilter::XrefNodeFilter() : ClassBasedElementNodeFilter(u"topic/xref ", {u"xref"}) {}

LinkNodeFilter::LinkNodeFilter() : ClassBasedElementNodeFilter(u"topic/link ", {u"link"}) {}

ReltableNodeFilter::ReltableNodeFilter()
    : ClassBasedElementNodeFilter(u"map/reltable ", {u"reltable"}) {}

AbbreviatedFormNodeFilter::AbbreviatedFormNodeFilter()
    : ClassBasedElementNodeFilter(u"topic/term abbrev-d/abbreviated-form ", {u"abbreviated-form"}) {
}

FilterAction OwnKeyrefRuleNodeFilter::acceptElement(const DOMElement& element) const {
    const std::u16string_view classValue = attributeView(element, u"class");
    return acceptIf(objects_.fits(element, classValue) || params_.fits(element, classValue) ||
                    abbreviatedForms_.fits(element, classValue) ||
                    images_.fits(element, classValue));
}

FilterAction ElemTagBasedElementNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(domText(element.getTagName()) == tagName_);
}

DitabaseNodeFilter::DitabaseNodeFilter() : ElemTagBasedElementNodeFilter(u"dita") {}

FilterAction AttrBasedElementNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(attributeView(element, attribute_.c_str()) == value_);
}

FilterAction IdAttrContainingNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(!attributeView(element, u"id").empty());
}

FilterAction ConrefAttrContainingNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(!attributeView(element, u"conref").empty());
}

FilterAction ConkeyrefAttrContainingNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(!attributeView(element, u"conkeyref").empty());
}

FilterAction KeyrefAttrContainingNodeFilter::acceptElement(const DOMElement& element) const {
    const std::u16string_view keyref = attributeView(element, u"keyref");
    return acceptIf(!keyref.empty() && keyref != kIgnoreKeyref);
}

FilterAction KeyDefinitionNodeFilter::acceptElement(const DOMElement& element) const {
    if (isExcluded(element)) {
        return FILTER_REJECT;
    }
    return acceptIf(!attributeView(element, u"keys").empty());
}

std::uint32_t DirectRefAttrContainingNodeFilter::mask(const DOMElement& element) const {
    std::uint32_t mask = 0;
    for (const Entry& entry : entries_) {
        if (!attributeView(element, entry.attribute.c_str()).empty()) {
            mask |= entry.bit;
        }
    }
    return mask;
}

FilterAction DirectRefAttrContainingNodeFilter::acceptElement(const DOMElement& element) const {
    return acceptIf(mask(element) != 0);
}

}  // namespace marrowpress
