#include "findings/file_uri.h"

#include <libxml/uri.h>

#include <new>

#include "host/libxml_handles.h"

namespace marrowpress {
std::string uriPath(std::string_view path) {
    const std::string terminated(path);
    const LibxmlText escaped(xmlURIEscapeStr(asXml(terminated.c_str()), asXml("/")));
    if (!escaped) {
        throw std::bad_alloc();
    }
    return std::string(asText(escaped.get()));
}

std::string fileUri(std::string_view path) {
    return "file://" + uriPath(path);
}

}  // namespace marrowpress
