#include "references/reference_paths.h"

#include <algorithm>

#include "application/messengers.h"
#include "dom/document_path.h"
#include "support/hrefs.h"
#include "support/paths.h"
#include "support/text.h"

namespace marrowpress {

using xercesc::DOMDocument;
using xercesc::DOMElement;

namespace {

/// The path that an href's path part stands for, which may be in the form of a URL.
std::u16string nativePathOf(std::u16string_view hrefPath) {
    const bool hasNothingToDecode =
        std::all_of(hrefPath.begin(), hrefPath.end(),
                    [](char16_t unit) { return unit < 0x80 && unit != u'%' && unit != u':'; });
    if (hasNothingToDecode) {
        return std::u16string(hrefPath);
    }
    const std::string narrow = toUtf8(hrefPath);
    return isUrlFormPath(narrow) ? toUtf16(urlFormToNativePath(narrow)) : std::u16string(hrefPath);
}

}  // namespace

std::u16string toAbsolutePath(std::u16string_view hrefPath, const DOMDocument& document) {
    if (isExternalUri(hrefPath)) {
        return std::u16string(hrefPath);
    }
    std::u16string path = nativePathOf(hrefPath);
    if (isExternalUri(path) || isAbsolutePath(path)) {
        return path;
    }
    const std::u16string base = documentPath(document);
    if (path.empty()) {
        return normalizePath(base);
    }
    return besideFile(base, path);
}

std::u16string resolveExistingPath(std::u16string_view hrefPath, const DOMDocument& document,
                                   const DOMElement* reference) {
    if (isExternalUri(hrefPath)) {
        return std::u16string(hrefPath);
    }
    std::u16string path = toAbsolutePath(hrefPath, document);
    if (!pathExists(path)) {
        ReportMessenger::instance().reportReferencedFileNotFound(path, reference);
        return {};
    }
    return path;
}

ResolvedHref resolveHref(std::u16string_view href, const DOMDocument& document,
                         const DOMElement* reference) {
    const HrefParts parts = splitHref(href);
    return {resolveExistingPath(parts.path, document, reference), std::u16string(parts.topicId)};
}

}  // namespace marrowpress
