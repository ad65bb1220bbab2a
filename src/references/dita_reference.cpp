#include "references/dita_reference.h"

#include <utility>

#include "application/messengers.h"
#include "dom/attributes.h"
#include "references/key_space.h"
#include "references/reference_paths.h"
#include "support/hrefs.h"

namespace marrowpress {

using xercesc::DOMElement;

DitaReference readDitaReference(const DOMElement& element, const KeySpace* keySpace) {
    const std::u16string keyref = attributeOf(element, u"keyref");
    const std::u16string href = attributeOf(element, u"href");
    ResolvedHref resolved;
    std::vector<std::u16string> missingFiles;
    const auto resolveAgainst = [&](const xercesc::DOMDocument& document) {
        resolved = resolveHref(href, document, &element);
        if (resolved.path.empty()) {
            missingFiles.push_back(toAbsolutePath(splitHref(href).path, document));
        }
    };
    // The definition is only a sign that the href came from the key space; it isn't read.
    const bool isKeyDefined = !keyref.empty() && keySpace && keySpace->find(keyref, element);
    if (isKeyDefined && !href.empty()) {
        resolveAgainst(keySpace->document());
    }
    if (resolved.path.empty() && !href.empty()) {
        resolveAgainst(*element.getOwnerDocument());
    }
    return {attributeOf(element, u"type"), attributeOf(element, u"format"),
            std::move(resolved.path), std::move(resolved.fragment), std::move(missingFiles)};
}

void reportMissingFiles(const DitaReference& reference, const DOMElement& element) {
    for (const std::u16string& path : reference.missingFiles) {
        ReportMessenger::instance().reportReferencedFileNotFound(path, &element);
    }
}

}  // namespace marrowpress
