#pragma once

#include <string>
#include <string_view>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

/// Which file a reference names: hrefs taken against the document that they stand in.
///
/// A file that doesn't exist is message 111 and an empty path. Only a failing
/// file system throws (`std::filesystem::filesystem_error`).
namespace marrowpress {

/// The absolute path of an href's path part, taken against the file of `document`. An empty path
/// part gives the document's own path; an external URI or an absolute path comes back as it is.
///
/// All paths that are compared in the system are made here.
std::u16string toAbsolutePath(std::u16string_view hrefPath, const xercesc::DOMDocument& document);

/// As `toAbsolutePath`; empty, after message 111, when the file doesn't exist. An external URI is
/// not looked for. `reference`, which may be null, is the element that refers.
std::u16string resolveExistingPath(std::u16string_view hrefPath,
                                   const xercesc::DOMDocument& document,
                                   const xercesc::DOMElement* reference);

struct ResolvedHref {
    std::u16string path;
    std::u16string fragment;
};

/// The file that `href` names, as `resolveExistingPath`, and the topic id in it.
ResolvedHref resolveHref(std::u16string_view href, const xercesc::DOMDocument& document,
                         const xercesc::DOMElement* reference);

}  // namespace marrowpress
