#pragma once

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

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
/// In every operation `root` may be null, which is a subtree without elements.
class KeyrefProcessor {
public:
    /// The six passes, in their order.
    void resolveAllKeyrefs(xercesc::DOMElement* root, xercesc::DOMDocument& keyDoc) const;

    /// Definitions in the key space document that themselves refer to a key.
    void resolveKeyDefinitionChains(xercesc::DOMElement* root, xercesc::DOMDocument& keyDoc) const;
    /// "datakeyref" of objects and "keyref" of params.
    void resolveMultimediaKeyrefs(xercesc::DOMElement* root,
                                  const xercesc::DOMDocument& keyDoc) const;
    /// Abbreviated forms: the href goes to "xtrf", and "keyref" becomes the ignore marker.
    void resolveAbbreviatedForms(xercesc::DOMElement* root,
                                 const xercesc::DOMDocument& keyDoc) const;
    /// Images: the href, no content.
    void resolveImageKeyrefs(xercesc::DOMElement* root, const xercesc::DOMDocument& keyDoc) const;
    /// All other elements with a "keyref".
    void resolveElementKeyrefs(xercesc::DOMElement* root, const xercesc::DOMDocument& keyDoc) const;
    /// "conkeyref" becomes "conref", and "conrefend" follows it.
    void resolveConkeyrefs(xercesc::DOMElement* root, const xercesc::DOMDocument& keyDoc) const;

private:
    KeyrefAttrContainingNodeFilter keyrefFilter_;
    ConkeyrefAttrContainingNodeFilter conkeyrefFilter_;
    MultimediaKeyrefAttrContainingNodeFilter multimediaKeyrefFilter_;
    AbbreviatedFormNodeFilter abbreviatedFormFilter_;
    ImageNodeFilter imageFilter_;
};

/// Makes the next chain pass over `keyDoc` look at every definition again. Only a change of the
/// document that is no pass of `KeyrefProcessor` over it calls for this.
void forgetThatKeyChainsAreResolved(xercesc::DOMDocument& keyDoc);

}  // namespace marrowpress
