#include "references/reference_resolution.h"

#include <algorithm>
#include <initializer_list>

#include "client/messages.h"
#include "references/node_filters.h"
#include "support/dom_attributes.h"
#include "support/paths.h"
#include "support/text.h"

namespace marrowpress {
namespace {

using xercesc::DOMDocument;
using xercesc::DOMElement;

constexpr std::string_view kFileScheme = "file:";
constexpr char kNativeSeparator = '/';

/// The value of a hexadecimal digit. Other characters give a value too: what stands behind "%" is
/// taken for digits.
int digitValue(char digit) {
    const auto unit = static_cast<unsigned char>(digit);
    return unit > '9' ? (unit & 0xDF) - 'A' + 10 : unit - '0';
}

std::string percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const bool isEscape = text[position] == '%' && text.size() - position > 2;
        if (isEscape) {
            decoded += static_cast<char>(digitValue(text[position + 1]) * 16 +
                                         digitValue(text[position + 2]));
            position += 2;
        } else {
            decoded += text[position];
        }
    }
    return decoded;
}

std::string toNative(std::string_view urlPath) {
    std::string path = percentDecoded(urlPath);
    std::replace(path.begin(), path.end(), '/', kNativeSeparator);
    return path;
}

/// How many of the `count` slashes behind "file:" stay.
std::size_t keptSlashes(std::size_t count, bool isDrivePath) {
    if (isDrivePath) {
        return count - std::min<std::size_t>(count, 3);
    }
    if (count >= 4) {
        return 2;
    }
    return count == 3 ? 1 : count;
}

std::string fileUrlToNativePath(std::string_view rest) {
    const bool isDrivePath = rest.find(':') != std::string_view::npos;
    const std::size_t slashes = std::min(rest.find_first_not_of('/'), rest.size());
    rest.remove_prefix(slashes - keptSlashes(slashes, isDrivePath));
    return toNative(rest);
}

bool endsBehind(std::u16string_view path, std::u16string_view ending) {
    return path.size() > ending.size() && path.ends_with(ending);
}

}  // namespace

bool isExternalUri(std::u16string_view text) {
    return text.starts_with(u"http://") || text.starts_with(u"https://") ||
           text.starts_with(u"mailto:");
}

HrefParts splitHref(std::u16string_view href) {
    const std::size_t hash = href.rfind(u'#');
    if (hash == std::u16string_view::npos) {
        return {href, {}, {}};
    }
    const std::u16string_view fragment = href.substr(hash + 1);
    const std::size_t slash = fragment.find(u'/');
    if (slash == std::u16string_view::npos) {
        return {href.substr(0, hash), fragment, {}};
    }
    return {href.substr(0, hash), fragment.substr(0, slash), fragment.substr(slash + 1)};
}

std::u16string joinHref(const HrefParts& parts) {
    std::u16string href(parts.path);
    if (!parts.topicId.empty()) {
        href += u'#';
        href += parts.topicId;
    }
    return href;
}

bool isUrlFormPath(std::string_view text) {
    if (text.empty()) {
        return false;
    }
    const bool isPlainName = text.find_first_of("/\\: ") == std::string_view::npos;
    const std::size_t slash = text.find('/');
    return isPlainName || text.starts_with(kFileScheme) ||
           (slash != std::string_view::npos && slash > 0);
}

std::string urlFormToNativePath(std::string_view text) {
    if (text.starts_with(kFileScheme)) {
        return fileUrlToNativePath(text.substr(kFileScheme.size()));
    }
    const bool isKept = text.starts_with("dctm://") || text.find('/') == std::string_view::npos;
    return isKept ? std::string(text) : toNative(text);
}

std::u16string uriToPath(std::u16string_view uri) {
    constexpr std::u16string_view kLocalFile = u"file:///";
    if (!uri.starts_with(kLocalFile)) {
        return std::u16string(uri);
    }
    // The last slash is the root of the path.
    return normalizePath(uri.substr(kLocalFile.size() - 1));
}

std::u16string toAbsolutePath(std::u16string_view hrefPath, const DOMDocument& document) {
    if (isExternalUri(hrefPath)) {
        return std::u16string(hrefPath);
    }
    std::u16string path(hrefPath);
    const std::string narrow = toUtf8(path);
    if (isUrlFormPath(narrow)) {
        path = toUtf16(urlFormToNativePath(narrow));
    }
    if (isExternalUri(path) || isAbsolutePath(path)) {
        return path;
    }
    const std::u16string base = uriToPath(domText(document.getDocumentURI()));
    if (path.empty()) {
        return normalizePath(base);
    }
    // The document's file as a folder that is left again.
    return normalizePath(base + u"/../" + u"/" + path);
}

std::u16string resolveExistingPath(std::u16string_view hrefPath, const DOMDocument& document) {
    if (isExternalUri(hrefPath)) {
        return std::u16string(hrefPath);
    }
    std::u16string path = toAbsolutePath(hrefPath, document);
    if (!pathExists(path)) {
        ReportMessenger::instance().reportMessage(MessageId::kReferencedFileNotFound, toUtf8(path));
        return {};
    }
    return path;
}

ResolvedHref resolveHref(std::u16string_view href, const DOMDocument& document) {
    const HrefParts parts = splitHref(href);
    return {resolveExistingPath(parts.path, document), std::u16string(parts.topicId)};
}

DitaReference readDitaReference(const DOMElement& element, const DOMDocument* keyDoc) {
    const std::u16string keyref = attributeOf(element, u"keyref");
    const std::u16string href = attributeOf(element, u"href");
    ResolvedHref resolved;
    // The definition is only a sign that the href came from the key space; it isn't read.
    const bool isKeyDefined = !keyref.empty() && keyDoc && keyDoc->getElementById(keyref.c_str());
    if (isKeyDefined && !href.empty()) {
        resolved = resolveHref(href, *keyDoc);
    }
    if (resolved.path.empty() && !href.empty()) {
        resolved = resolveHref(href, *element.getOwnerDocument());
    }
    return {attributeOf(element, u"type"), attributeOf(element, u"format"),
            std::move(resolved.path), std::move(resolved.fragment)};
}

DitaDocKind classifyReference(const DitaReference& reference) {
    if (reference.path.empty()) {
        return DitaDocKind::DitaDocNone;
    }
    if (endsBehind(reference.path, u".dita")) {
        return DitaDocKind::DitaDocTopic;
    }
    if (endsBehind(reference.path, u".ditamap")) {
        return DitaDocKind::DitaDocMap;
    }
    constexpr std::size_t kShortestXmlPath = 5;
    if (reference.path.size() >= kShortestXmlPath && !reference.path.ends_with(u".xml")) {
        return DitaDocKind::DitaDocNone;
    }
    for (const std::u16string_view topicType : {u"concept", u"reference", u"task", u"topic"}) {
        if (reference.type == topicType) {
            return DitaDocKind::DitaDocTopic;
        }
    }
    return reference.format == u"ditamap" ? DitaDocKind::DitaDocMap
                                          : DitaDocKind::DitaDocUnknownXml;
}

DitaDocKind classifyDocument(const DOMDocument* document) {
    const DOMElement* const root = document ? document->getDocumentElement() : nullptr;
    if (TopicNodeFilter().acceptNode(root) == xercesc::DOMNodeFilter::FILTER_ACCEPT) {
        return DitaDocKind::DitaDocTopic;
    }
    if (MapNodeFilter().acceptNode(root) == xercesc::DOMNodeFilter::FILTER_ACCEPT) {
        return DitaDocKind::DitaDocMap;
    }
    return DitaDocKind::DitaDocNone;
}

}  // namespace marrowpress
