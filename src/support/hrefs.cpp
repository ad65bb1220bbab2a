#include "support/hrefs.h"

#include <algorithm>

#include "support/paths.h"

namespace marrowpress {
namespace {

constexpr std::string_view kFileScheme = "file:";

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
    return percentDecoded(rest);
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
    return isKept ? std::string(text) : percentDecoded(text);
}

std::u16string uriToPath(std::u16string_view uri) {
    constexpr std::u16string_view kLocalFile = u"file:///";
    if (!uri.starts_with(kLocalFile)) {
        return std::u16string(uri);
    }
    // The last slash is the root of the path.
    return normalizePath(uri.substr(kLocalFile.size() - 1));
}

}  // namespace marrowpress
