#include "findings/file_uri.h"

#include <libxml/uri.h>

#include <memory>
#include <new>

namespace marrowpress {
namespace {

struct FreeXml {
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};

}  // namespace

std::string uriPath(std::string_view path) {
    const std::string terminated(path);
    const std::unique_ptr<xmlChar, FreeXml> escaped(
        xmlURIEscapeStr(reinterpret_cast<const xmlChar*>(terminated.c_str()),
                        reinterpret_cast<const xmlChar*>("/")));
    if (!escaped) {
        throw std::bad_alloc();
    }
    return reinterpret_cast<const char*>(escaped.get());
}

std::string fileUri(std::string_view path) {
    return "file://" + uriPath(path);
}

}  // namespace marrowpress
