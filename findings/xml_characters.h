#pragma once

#include <libxml/globals.h>
#include <libxml/xmlstring.h>

#include <string>

namespace marrowpress {

/// Frees a text that libxml2 has given away.
struct FreeXmlText {
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};

/// UTF-8, as libxml2 takes it; it stays the caller's.
inline const xmlChar* asXml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

/// A copy, UTF-8; empty for null.
inline std::string asText(const xmlChar* text) {
    return text ? reinterpret_cast<const char*>(text) : "";
}

}  // namespace marrowpress
