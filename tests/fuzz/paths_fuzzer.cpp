#include <algorithm>

#include "support/hrefs.h"
#include "support/paths.h"
#include "support/text.h"
#include "tests/fuzz/fuzzing.h"

namespace {

using marrowpress::HrefParts;
using marrowpress::isAbsolutePath;
using marrowpress::joinPath;
using marrowpress::normalizePath;
using marrowpress::parentPath;
using marrowpress::pathFileName;
using marrowpress::require;
using marrowpress::toUtf8;

void checkNormalForm(std::u16string_view path) {
    const std::u16string normal = normalizePath(path);
    const std::string shown = toUtf8(path) + "\n" + toUtf8(normal);
    require(normal.empty() == path.empty(), "an empty path alone has an empty form", shown);
    require(normal.find(u'\\') == std::u16string::npos, "\"/\" is the separator", shown);
    if (isAbsolutePath(path)) {
        require(isAbsolutePath(normal), "an absolute path stays absolute", shown);
        require(normalizePath(normal) == normal, "the normal form is its own normal form", shown);
    }
}

void checkParts(std::u16string_view path) {
    const std::u16string_view name = pathFileName(path);
    const std::u16string_view parent = parentPath(path);
    const std::string shown = toUtf8(path) + "\n" + toUtf8(parent) + "\n" + toUtf8(name);
    require(path.ends_with(name) && path.starts_with(parent), "a path has its parts", shown);
    require(name.starts_with(marrowpress::pathStem(path)), "a name begins with its stem", shown);
    require(!path.empty() && path.size() == parent.size() ? parentPath(parent) == parent : true,
            "a root is its own parent", shown);
    const std::u16string_view rest = path.substr(std::min(parent.size(), path.size()));
    require(rest.size() < name.size() ||
                std::all_of(rest.begin(), rest.end() - static_cast<std::ptrdiff_t>(name.size()),
                            marrowpress::isPathSeparator),
            "between folder and name there are separators alone", shown);
}

void checkJoin(std::u16string_view path, std::u16string_view second) {
    const std::u16string joined = joinPath(path, second);
    const std::string shown = toUtf8(path) + "\n" + toUtf8(second) + "\n" + toUtf8(joined);
    require(!isAbsolutePath(second) || joined == second, "an absolute path stands alone", shown);
    require(!isAbsolutePath(path) || second.find(u':') != std::u16string_view::npos ||
                isAbsolutePath(joined),
            "what is below an absolute path is absolute", shown);
}

void checkHref(std::u16string_view href) {
    const HrefParts parts = marrowpress::splitHref(href);
    const std::string shown = toUtf8(href);
    std::u16string whole(parts.path);
    if (href.find(u'#') != std::u16string_view::npos) {
        whole.append(u"#").append(parts.topicId);
        const std::size_t elementAt = whole.size();
        if (elementAt < href.size()) {
            whole.append(u"/").append(parts.elementId);
        }
    }
    require(whole == href, "the parts of a href are all of it", shown);

    const std::u16string joined = marrowpress::joinHref(parts);
    const std::u16string expected =
        std::u16string(parts.path) +
        (parts.topicId.empty() ? std::u16string() : u"#" + std::u16string(parts.topicId));
    require(joined == expected, "a joined href has no element id, and no \"#\" by itself", shown);
    const bool isKept = parts.elementId.empty() && !href.ends_with(u'#') && !href.ends_with(u'/');
    require(!isKept || joined == href, "a joined href is the whole one otherwise", shown);
}

void checkUrl(const std::string& text) {
    const std::string path = marrowpress::urlFormToNativePath(text);
    require(path.size() <= text.size(), "a path is no longer than its URL", text);
    require(!marrowpress::isUrlFormPath(text) || !text.starts_with('/'),
            "a text that begins with \"/\" is a path", text);
}

}  // namespace

/// The input is a path, or two with a line feed between them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = marrowpress::inputText(data, size);
    checkUrl(text);
    const std::u16string both = marrowpress::toUtf16(text);
    const std::size_t cut = std::min(both.find(u'\n'), both.size());
    const std::u16string_view path = std::u16string_view(both).substr(0, cut);
    const std::u16string_view second =
        std::u16string_view(both).substr(std::min(cut + 1, both.size()));
    for (const std::u16string_view one : {path, second}) {
        checkNormalForm(one);
        checkParts(one);
        checkHref(one);
        require(marrowpress::isExternalUri(one) || marrowpress::uriToPath(one) == one ||
                    one.starts_with(u"file:///"),
                "only a local file's URI has another path", toUtf8(one));
    }
    checkJoin(path, second);
    return 0;
}
