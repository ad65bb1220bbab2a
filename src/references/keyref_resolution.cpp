#include "references/keyref_resolution.h"

#include <string>

#include "dom/attributes.h"
#include "dom/element_walker.h"
#include "references/key_chains.h"
#include "references/key_definitions.h"
#include "references/multimedia_references.h"
#include "support/hrefs.h"
#include "support/short_cuts.h"
#include "xml/grammar_parser_cache.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;

/// The end of a content reference's range, in the file of its start.
std::u16string conrefendFor(const std::u16string& conref, const std::u16string& conrefend) {
    const HrefParts start = splitHref(conref);
    const HrefParts end = splitHref(conrefend);
    if (start.elementId.empty()) {
        return std::u16string(start.path).append(u"#").append(end.topicId);
    }
    return joinHref(start).append(u"/").append(end.elementId);
}

}  // namespace

void KeyrefProcessor::resolveAllKeyrefs(DOMElement* root, KeySpace& keySpace) const {
    if (root) {
        resolveKeyDefinitionChains(keySpace, *root->getOwnerDocument());
    }
    // Most topics have none of the elements that the next three passes are about.
    const OwnRules rules = ownRulesIn(root);
    if (rules.media) {
        resolveMultimediaKeyrefs(root, keySpace);
    }
    if (rules.abbreviatedForms) {
        resolveAbbreviatedForms(root, keySpace);
    }
    if (rules.images) {
        resolveImageKeyrefs(root, keySpace);
    }
    resolveElementKeyrefs(root, keySpace);
    resolveConkeyrefs(root, keySpace);
}

KeyrefProcessor::OwnRules KeyrefProcessor::ownRulesIn(DOMElement* root) const {
    if (!ShortCuts::taken().lookAhead) {
        return {true, true, true};
    }
    OwnRules rules;
    ElementWalker walker(root, ownRuleFilter_);
    while (const DOMElement* const element = walker.nextNode()) {
        const bool isAbbreviatedForm = selects(abbreviatedFormFilter_, element);
        const bool isImage = selects(imageFilter_, element);
        rules.abbreviatedForms |= isAbbreviatedForm;
        rules.images |= isImage;
        rules.media |= !isAbbreviatedForm && !isImage;
    }
    return rules;
}

void KeyrefProcessor::resolveKeyDefinitionChains(KeySpace& keySpace,
                                                 const DOMDocument& dtdSource) const {
    const ParserBundle& dtd = GrammarParserCache::instance().parserForDocument(dtdSource);
    const bool changesKeySpace = &dtdSource == &keySpace.document();
    if (changesKeySpace) {
        keySpace.noteChange();
    } else if (keySpace.areChainsResolved()) {
        // Nothing has changed the key space since a pass found no reference in it. The walk would
        // only repeat that, once for each content reference to another file.
        return;
    }
    const std::size_t followed = KeyChainPass(keySpace, dtd).run();
    if (followed == 0 && !changesKeySpace) {
        keySpace.noteThatChainsAreResolved();
    }
}

void KeyrefProcessor::resolveMultimediaKeyrefs(DOMElement* root, const KeySpace& keySpace) const {
    ElementWalker walker(root, multimediaKeyrefFilter_);
    while (DOMElement* const element = walker.nextNode()) {
        const MultimediaNodeHandler& handler =
            multimediaNodeHandler(multimediaKeyrefFilter_.getType(element));
        const std::u16string href =
            resolveKeyHref(keySpace, handler.getKeyrefValue(*element), *element);
        if (!href.empty()) {
            handler.setRefValue(*element, href);
        }
        handler.removeKeyrefAttr(*element);
    }
}

void KeyrefProcessor::resolveAbbreviatedForms(DOMElement* root, const KeySpace& keySpace) const {
    ElementWalker walker(root, abbreviatedFormFilter_);
    while (DOMElement* const element = walker.nextNode()) {
        const std::u16string href =
            resolveKeyHref(keySpace, attributeOf(*element, u"keyref"), *element);
        if (!href.empty()) {
            element->setAttribute(u"xtrf", href.c_str());
        }
        element->setAttribute(u"keyref", std::u16string(kIgnoreKeyref).c_str());
    }
}

void KeyrefProcessor::resolveImageKeyrefs(DOMElement* root, const KeySpace& keySpace) const {
    ElementWalker walker(root, imageFilter_);
    while (DOMElement* const element = walker.nextNode()) {
        const std::u16string href =
            resolveKeyHref(keySpace, attributeOf(*element, u"keyref"), *element);
        if (!href.empty()) {
            element->setAttribute(u"href", href.c_str());
        }
        element->removeAttribute(u"keyref");
    }
}

void KeyrefProcessor::resolveElementKeyrefs(DOMElement* root, const KeySpace& keySpace) const {
    if (!root) {
        return;
    }
    // Collected first: what an element gets from its definition is not for this run to resolve.
    const std::vector<DOMElement*> elements = collectElements(root, keyrefFilter_);
    const ParserBundle& dtd =
        GrammarParserCache::instance().parserForDocument(*root->getOwnerDocument());
    for (DOMElement* const element : elements) {
        const std::u16string keyReference = attributeOf(*element, u"keyref");
        applyKeyDefinition(*element, keySpace.find(keyNameOf(keyReference), *element), dtd);
    }
}

void KeyrefProcessor::resolveConkeyrefs(DOMElement* root, const KeySpace& keySpace) const {
    ElementWalker walker(root, conkeyrefFilter_);
    while (DOMElement* const element = walker.nextNode()) {
        const std::u16string conref =
            resolveKeyHref(keySpace, attributeOf(*element, u"conkeyref"), *element);
        const std::u16string conrefend = attributeOf(*element, u"conrefend");
        if (!conref.empty()) {
            element->setAttribute(u"conref", conref.c_str());
            if (!splitHref(conrefend).elementId.empty()) {
                element->setAttribute(u"conrefend", conrefendFor(conref, conrefend).c_str());
            }
        }
        element->removeAttribute(u"conkeyref");
    }
}

}  // namespace marrowpress
