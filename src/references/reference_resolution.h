#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

/// What a reference names: which file, which part of it, and what kind of
/// document that is.
///
/// A file that doesn't exist is message 111 and an empty path. Only a failing
/// file system throws (`std::filesystem::filesystem_error`).
namespace marrowpress {

/// The parts of an href, as views into its text.
struct HrefParts {
    std::u16string_view path;       ///< what stands in front of the last "#"
    std::u16string_view topicId;    ///< what stands behind it, up to the first "/"
    std::u16string_view elementId;  ///< what stands behind that "/", further "/" included
};

/// What an element refers to.
struct DitaReference {
    std::u16string type;      ///< the attribute "type" as written
    std::u16string format;    ///< the attribute "format" as written
    std::u16string path;      ///< the file, absolute, or an external URI; empty if there is none
    std::u16string fragment;  ///< the topic id of the href
};

enum class DitaDocKind : std::uint32_t {
    DitaDocNone = 0,
    DitaDocTopic = 1,
    DitaDocMap = 2,
    DitaDocUnknownXml = 3,
};

/// Whether `text` begins with "http://", "https://" or "mailto:", in exactly these letters.
bool isExternalUri(std::u16string_view text);

/// `href` must outlive the result.
HrefParts splitHref(std::u16string_view href);

/// The path, and "#" and the topic id if there is one. The element id is left out.
std::u16string joinHref(const HrefParts& parts);

/// Whether a UTF-8 text is written as a URL and not as a path of the system. A plain name, with
/// no separator, colon or blank, counts as URL; a text that begins with "/" is a path.
bool isUrlFormPath(std::string_view text);

/// The path that a UTF-8 text in URL form stands for: "file:" goes, and percent escapes are
/// undone, but not in a plain name without "/". Texts that begin with "dctm://" stay as they are.
std::string urlFormToNativePath(std::string_view text);

/// The path that a document URI stands for. Nothing is percent-decoded.
std::u16string uriToPath(std::u16string_view uri);

/// The absolute path of an href's path part, taken against the file of `document`. An empty path
/// part gives the document's own path; an external URI or an absolute path comes back as it is.
///
/// All paths that are compared in the system are made here.
std::u16string toAbsolutePath(std::u16string_view hrefPath, const xercesc::DOMDocument& document);

/// As `toAbsolutePath`; empty, after message 111, when the file doesn't exist. An external URI is
/// not looked for.
std::u16string resolveExistingPath(std::u16string_view hrefPath,
                                   const xercesc::DOMDocument& document);

struct ResolvedHref {
    std::u16string path;
    std::u16string fragment;
};

ResolvedHref resolveHref(std::u16string_view href, const xercesc::DOMDocument& document);

/// Reads what `element` refers to. `keyDoc` may be null.
///
/// The href of an element whose "keyref" names a defined key is relative to the key space
/// document, if the file exists there; all others, and the rest, to the element's own document.
DitaReference readDitaReference(const xercesc::DOMElement& element,
                                const xercesc::DOMDocument* keyDoc);

/// Tells by the end of the path, and for an ".xml" file (or a path of less than five characters)
/// by "type" and "format".
DitaDocKind classifyReference(const DitaReference& reference);

/// Tells by the document element; a null document, or one without an element, is none.
DitaDocKind classifyDocument(const xercesc::DOMDocument* document);

}  // namespace marrowpress
