#pragma once

#include <string>
#include <string_view>
#include <xercesc/dom/DOMDocument.hpp>

#include "support/hrefs.h"
#include "support/xerces_ptr.h"

namespace marrowpress {

/// The path of the file that `document` was read from; empty for one that was made in memory.
///
/// The engine gives a document the URI "file://" and the path that it was handed, with nothing
/// escaped.
inline std::u16string documentPath(const xercesc::DOMDocument& document) {
    return uriToPath(domText(document.getDocumentURI()));
}

/// The path of `document` with "#", the id of a topic and, behind "/", that of an element in it, as
/// far as they are not empty.
inline std::u16string pathWithIds(const xercesc::DOMDocument& document, std::u16string_view topicId,
                                  std::u16string_view elementId = {}) {
    std::u16string path = documentPath(document);
    if (!topicId.empty() || !elementId.empty()) {
        path.append(u"#").append(topicId);
    }
    if (!elementId.empty()) {
        path.append(u"/").append(elementId);
    }
    return path;
}

}  // namespace marrowpress
