#include "keys/pulled_fragments.h"

#include "dom/attributes.h"
#include "dom/copies.h"
#include "dom/nesting_depth.h"
#include "dom/nodes.h"
#include "references/copied_references.h"
#include "support/publish_exception.h"

namespace marrowpress {

using xercesc::DOMElement;
using xercesc::DOMNode;

/// Whether `fragment` is among what was pulled, one on account of the other, up to `cause`.
bool PulledFragments::hasLedTo(const Copy* cause, const Fragment& fragment) {
    while (cause && !(cause->fragment == fragment)) {
        cause = cause->cause;
    }
    return cause;
}

void PulledFragments::pull(DOMElement& reference, const xercesc::DOMDocument& target,
                           std::u16string_view id) {
    const Fragment fragment{&target, std::u16string(id)};
    DOMElement* const root = target.getDocumentElement();
    const DOMElement* const element = root ? ids_.find(*root, id) : nullptr;
    const Copy* const cause = innermostCopy(reference);
    if (!element || isWithin(reference, *element) || hasLedTo(cause, fragment)) {
        return;
    }
    if (cause) {
        CopiedReferences::instance().follow();
    }
    DOMNode* const parent = reference.getParentNode();
    if (wouldNestTooDeeply(parent, *element)) {
        throw PublishException();
    }
    auto* const copy = static_cast<DOMElement*>(
        importCopy(*reference.getOwnerDocument(), *element,
                   {&reference, u"href", attributeView(reference, u"href")}));
    // Throws for a root: a document has room for one element only.
    parent->insertBefore(copy, nextElementSibling(reference));
    ids_.noteChange(*copy);
    copies_.emplace(copy, Copy{fragment, cause});
}

/// What `reference` came with; null when it was not pulled.
const PulledFragments::Copy* PulledFragments::innermostCopy(const DOMElement& reference) const {
    for (const DOMNode* node = &reference; node; node = node->getParentNode()) {
        const auto copy = copies_.find(node);
        if (copy != copies_.end()) {
            return &copy->second;
        }
    }
    return nullptr;
}

}  // namespace marrowpress
