#pragma once

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "references/key_space.h"
#include "references/multimedia_node_filters.h"
#include "references/node_filters.h"

namespace marrowpress {

/// Turns references through keys into direct ones: hrefs, text, content
/// references. Keeps nothing from one call to the next.
///
/// A subtree goes through six passes, whose order matters: definitions have to
/// be complete before they are read, elements with rules of their own come
/// before the rule for all others, and content references are made last, for
/// `ConrefProcessor` to follow. Afterwards what the subtree held before has no
/// "keyref", "conkeyref" or "datakeyref" left, but for the ignore marker on
/// abbreviated forms.
///
/// A key that isn't defined is message 105; the element keeps its content.
///
/// In every operation `root` may be null, which is a subtree without elements. The passes over a
/// subtree read the definitions and change none, unless the subtree is part of the key space
/// document itself: the loader runs them there.
class KeyrefProcessor {
public:
    /// The six passes, in their order.
    void resolveAllKeyrefs(xercesc::DOMElement* root, KeySpace& keySpace) const;

    /// Definitions in the key space that themselves refer to a key. The DTD of `dtdSource`, the
    /// document whose references are to be resolved next, says which element types have an "href".
    void resolveKeyDefinitionChains(KeySpace& keySpace,
                                    const xercesc::DOMDocument& dtdSource) const;
    /// "datakeyref" of objects and "keyref" of params.
    void resolveMultimediaKeyrefs(xercesc::DOMElement* root, const KeySpace& keySpace) const;
    /// Abbreviated forms: the href goes to "xtrf", and "keyref" becomes the ignore marker.
    void resolveAbbreviatedForms(xercesc::DOMElement* root, const KeySpace& keySpace) const;
    /// Images: the href, no content.
    void resolveImageKeyrefs(xercesc::DOMElement* root, const KeySpace& keySpace) const;
    /// All other elements with a "keyref".
    void resolveElementKeyrefs(xercesc::DOMElement* root, const KeySpace& keySpace) const;
    /// "conkeyref" becomes "conref", and "conrefend" follows it.
    void resolveConkeyrefs(xercesc::DOMElement* root, const KeySpace& keySpace) const;

private:
    /// Which of the elements with a rule of their own a subtree has.
    struct OwnRules {
        bool media = false;
        bool abbreviatedForms = false;
        bool images = false;
    };
    OwnRules ownRulesIn(xercesc::DOMElement* root) const;

    OwnKeyrefRuleNodeFilter ownRuleFilter_;
    KeyrefAttrContainingNodeFilter keyrefFilter_;
    ConkeyrefAttrContainingNodeFilter conkeyrefFilter_;
    MultimediaKeyrefAttrContainingNodeFilter multimediaKeyrefFilter_;
    AbbreviatedFormNodeFilter abbreviatedFormFilter_;
    ImageNodeFilter imageFilter_;
};

}  // namespace marrowpress
