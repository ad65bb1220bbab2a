#include "findings/xml_writer.h"

#include <libxml/chvalid.h>

#include <new>
#include <ostream>
#include <string>

#include "findings/characters.h"
#include "host/libxml_handles.h"

namespace marrowpress {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

int writeTo(void* stream, const char* bytes, int count) {
    static_cast<std::ostream*>(stream)->write(bytes, count);
    return count;
}

int leaveOpen(void* /*stream*/) {
    return 0;
}

/// libxml2 fails here for want of memory only.
void check(int result) {
    if (result < 0) {
        throw std::bad_alloc();
    }
}

bool canStandInXml(const Character& character) {
    const auto codePoint = static_cast<unsigned>(character.codePoint);
    return character.codePoint >= 0 && xmlIsCharQ(codePoint);
}

std::string xmlText(std::string_view raw) {
    std::string text;
    text.reserve(raw.size());
    while (!raw.empty()) {
        const Character character = firstCharacter(raw);
        text += canStandInXml(character) ? character.bytes : kReplacement;
        raw.remove_prefix(character.bytes.size());
    }
    return text;
}

}  // namespace

XmlWriter::XmlWriter(std::ostream& out) {
    xmlOutputBuffer* const buffer = xmlOutputBufferCreateIO(writeTo, leaveOpen, &out, nullptr);
    if (buffer == nullptr) {
        throw std::bad_alloc();
    }
    writer_.reset(xmlNewTextWriter(buffer));
    if (!writer_) {
        xmlOutputBufferClose(buffer);
        throw std::bad_alloc();
    }
    check(xmlTextWriterSetIndent(writer_.get(), 1));
    check(xmlTextWriterStartDocument(writer_.get(), nullptr, "UTF-8", nullptr));
}

void XmlWriter::startElement(const char* name) {
    check(xmlTextWriterStartElement(writer_.get(), asXml(name)));
}

void XmlWriter::attribute(const char* name, std::string_view value) {
    check(xmlTextWriterWriteAttribute(writer_.get(), asXml(name), asXml(xmlText(value).c_str())));
}

void XmlWriter::text(std::string_view value) {
    check(xmlTextWriterWriteString(writer_.get(), asXml(xmlText(value).c_str())));
}

void XmlWriter::endElement() {
    check(xmlTextWriterEndElement(writer_.get()));
}

void XmlWriter::endDocument() {
    check(xmlTextWriterEndDocument(writer_.get()));
    check(xmlTextWriterFlush(writer_.get()));
}

}  // namespace marrowpress
