#pragma once

#include <string>
#include <string_view>

/// Hrefs and URIs as text: their parts, and the paths that they stand for.
///
/// Nothing here asks the file system or knows a document.
namespace marrowpress {

/// The parts of an href, as views into its text.
struct HrefParts {
    std::u16string_view path;       ///< what stands in front of the last "#"
    std::u16string_view topicId;    ///< what stands behind it, up to the first "/"
    std::u16string_view elementId;  ///< what stands behind that "/", further "/" included
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

}  // namespace marrowpress
