#pragma once

#include <libxml/tree.h>
#include <libxml/xmlreader.h>

#include <memory>
#include <string>
#include <string_view>

/// What libxml2 hands out, with an owner, and its texts as others are.
namespace marrowpress {

struct FreeLibxmlText {
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};
using LibxmlText = std::unique_ptr<xmlChar, FreeLibxmlText>;

struct FreeLibxmlDocument {
    void operator()(xmlDoc* document) const noexcept { xmlFreeDoc(document); }
};
using LibxmlDocument = std::unique_ptr<xmlDoc, FreeLibxmlDocument>;

struct FreeLibxmlReader {
    void operator()(xmlTextReader* reader) const noexcept {
        // The reader leaves its document to whoever asked for it.
        const LibxmlDocument document(xmlTextReaderCurrentDoc(reader));
        xmlFreeTextReader(reader);
    }
};
using LibxmlReader = std::unique_ptr<xmlTextReader, FreeLibxmlReader>;

/// UTF-8, as libxml2 takes it; it stays the caller's.
inline const xmlChar* asXml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

/// Empty for null.
inline std::string_view asText(const xmlChar* text) {
    return text ? reinterpret_cast<const char*>(text) : std::string_view();
}

/// The attribute of the start tag that the reader is at; empty when there is none.
inline std::string attributeOf(xmlTextReader& reader, const char* name) {
    const LibxmlText value(xmlTextReaderGetAttribute(&reader, asXml(name)));
    return std::string(asText(value.get()));
}

}  // namespace marrowpress
