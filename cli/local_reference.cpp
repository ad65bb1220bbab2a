#include "cli/local_reference.h"

#include <libxml/uri.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <new>
#include <utility>

#include "host/libxml_handles.h"

namespace marrowpress {
namespace {

struct FreeXmlUri {
    void operator()(char* text) const noexcept { xmlFree(text); }
};

bool isThere(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

bool isHexadecimal(char unit) {
    return (unit >= '0' && unit <= '9') || (unit >= 'A' && unit <= 'F') ||
           (unit >= 'a' && unit <= 'f');
}

bool startsWithEscape(std::string_view text) {
    return text.size() > 2 && text[0] == '%' && isHexadecimal(text[1]) && isHexadecimal(text[2]);
}

/// Whether the path of a URI can't hold the byte.
bool isForbidden(char unit) {
    switch (unit) {
        case '"':
        case '<':
        case '>':
        case '\\':
        case '^':
        case '`':
        case '{':
        case '|':
        case '}':
        case '\x7F':
            return true;
        default:
            return unit >= '\0' && unit <= ' ';
    }
}

void appendEscape(std::string& text, char unit) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(unit);
    text += '%';
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
}

std::string escaped(std::string_view path, bool hasEscapes) {
    std::string text;
    text.reserve(path.size());
    for (std::size_t at = 0; at < path.size(); ++at) {
        const char unit = path[at];
        const bool isEscaped =
            isForbidden(unit) || unit == '#' ||
            (unit == '%' && !(hasEscapes && startsWithEscape(path.substr(at)))) ||
            (unit == '?' && !hasEscapes);
        if (isEscaped) {
            appendEscape(text, unit);
        } else {
            text += unit;
        }
    }
    return text;
}

bool isNormal(std::string_view path) {
    return path.find("//") == std::string_view::npos && path.find("/.") == std::string_view::npos;
}

/// `path` as seen from `folder`; both are absolute and normal, and the folder ends with "/".
std::string seenFrom(std::string_view folder, std::string_view path) {
    const auto differing =
        std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).second;
    const auto same = static_cast<std::size_t>(differing - path.begin());
    const std::size_t shared = path.rfind('/', same - 1) + 1;
    const auto up =
        std::count(folder.begin() + static_cast<std::ptrdiff_t>(shared), folder.end(), '/');
    std::string seen;
    for (std::ptrdiff_t step = 0; step < up; ++step) {
        seen += "../";
    }
    return seen.append(path.substr(shared));
}

/// Whether more than a part of the path has to stand in front of it, so that it means what it says.
bool needsFolder(std::string_view uri) {
    const std::string_view first = uri.substr(0, uri.find('/'));
    const bool isName = first.size() == uri.size();
    return uri.empty() || first.find(':') != std::string_view::npos ||
           (isName && first.find('%') != std::string_view::npos);
}

}  // namespace

std::optional<LocalReference> localReference(std::string_view text) {
    if (!text.starts_with('/') || text.starts_with("//")) {
        return std::nullopt;
    }
    const std::size_t hash = text.rfind('#');
    std::string whole(text);
    if (hash != std::string_view::npos && isThere(whole)) {
        return referenceToFile(std::move(whole), {});
    }
    LocalReference reference = referenceToFile(std::string(text.substr(0, hash)), {});
    if (hash != std::string_view::npos) {
        reference.fragment = text.substr(hash);
    }
    reference.hasEscapes =
        reference.path.find_first_of("%?") != std::string::npos && !isThere(reference.path);
    return reference;
}

LocalReference referenceToFile(std::string path, std::string fragment) {
    return {std::move(path), std::move(fragment), /*hasEscapes=*/false};
}

std::string filePathOf(const LocalReference& reference) {
    if (!reference.hasEscapes) {
        return reference.path;
    }
    const std::string path = reference.path.substr(0, reference.path.find('?'));
    const std::unique_ptr<char, FreeXmlUri> text(
        xmlURIUnescapeString(path.c_str(), static_cast<int>(path.size()), nullptr));
    if (!text) {
        throw std::bad_alloc();
    }
    return text.get();
}

std::string relativeUri(const LocalReference& reference, std::string_view folder) {
    std::string base(folder);
    if (!base.ends_with('/')) {
        base += '/';
    }
    const std::string seen =
        isNormal(reference.path)
            ? seenFrom(base, reference.path)
            : seenFrom(base, std::filesystem::path(reference.path).lexically_normal().string());
    std::string uri = escaped(seen, reference.hasEscapes);
    if (needsFolder(uri)) {
        uri.insert(0, "./");
    }
    return uri + reference.fragment;
}

}  // namespace marrowpress
