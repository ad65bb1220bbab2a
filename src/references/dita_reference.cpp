#include "references/dita_reference.h"

#include <utility>

#include "dom/attributes.h"
#include "references/key_space.h"
#include "references/reference_paths.h"

namespace marrowpress {

using xercesc::DOMElement;

DitaReference readDitaReference(const DOMElement& element, const KeySpace* keySpace) {
    const std::u16string keyref = attributeOf(element, u"keyref");
    const std::u16string href = attributeOf(element, u"href");
    ResolvedHref resolved;
    // The definition is only a sign that the href came from the key space; it isn't read.
    const bool isKeyDefined = !keyref.empty() && keySpace && keySpace->find(keyref, element);
    if (isKeyDefined && !href.empty()) {
        resolved = resolveHref(href, keySpace->document(), &element);
    }
    if (resolved.path.empty() && !href.empty()) {
        resolved = resolveHref(href, *element.getOwnerDocument(), &element);
    }
    return {attributeOf(element, u"type"), attributeOf(element, u"format"),
            std::move(resolved.path), std::move(resolved.fragment)};
}

}  // namespace marrowpress
