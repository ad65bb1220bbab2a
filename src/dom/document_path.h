#pragma once

#include <string>
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

}  // namespace marrowpress
