#include "cli/document_titles.h"

#include <libxml/xmlreader.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <string_view>

#include "findings/regular_file.h"
#include "host/libxml_handles.h"
#include "host/local_xml_input.h"

namespace marrowpress {
namespace {

constexpr std::size_t kMostBytes = 160;

void ignoreError(void* /*data*/, xmlError* /*error*/) {}

bool isElement(xmlTextReader& reader) {
    return xmlTextReaderNodeType(&reader) == XML_READER_TYPE_ELEMENT;
}

bool isText(xmlTextReader& reader) {
    const int type = xmlTextReaderNodeType(&reader);
    return type == XML_READER_TYPE_TEXT || type == XML_READER_TYPE_CDATA ||
           type == XML_READER_TYPE_WHITESPACE || type == XML_READER_TYPE_SIGNIFICANT_WHITESPACE;
}

bool isTitle(xmlTextReader& reader) {
    constexpr std::array<std::string_view, 3> kTitles{"title", "mainbooktitle", "glossterm"};
    return std::find(kTitles.begin(), kTitles.end(), asText(xmlTextReaderConstName(&reader))) !=
           kTitles.end();
}

bool isLeftOut(xmlTextReader& reader, std::span<const ExcludedElement> leftOut) {
    return std::any_of(leftOut.begin(), leftOut.end(), [&reader](const ExcludedElement& element) {
        return !element.value.empty() &&
               element.element == asText(xmlTextReaderConstName(&reader)) &&
               element.value == attributeOf(reader, element.attribute.c_str());
    });
}

/// The key that an empty element stands for; empty when there is none.
std::string keyOf(xmlTextReader& reader) {
    return xmlTextReaderIsEmptyElement(&reader) == 1 ? attributeOf(reader, "keyref")
                                                     : std::string();
}

void appendWords(std::string& words, std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    for (const char unit : text) {
        const bool isBlank = kBlanks.find(unit) != std::string_view::npos;
        if (!isBlank) {
            words += unit;
        } else if (!words.empty() && words.back() != ' ') {
            words += ' ';
        }
    }
}

/// At a character's end.
std::string cutToMost(const std::string& text) {
    if (text.size() <= kMostBytes) {
        return text;
    }
    std::size_t end = kMostBytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return text.substr(0, end) + "...";
}

/// The text inside the element that the reader stands on.
std::string textInside(xmlTextReader& reader, std::span<const ExcludedElement> leftOut) {
    const int depth = xmlTextReaderDepth(&reader);
    std::string text;
    if (xmlTextReaderIsEmptyElement(&reader) == 1) {
        return text;
    }
    int result = xmlTextReaderRead(&reader);
    while (text.size() < kMostBytes && result == 1 && xmlTextReaderDepth(&reader) > depth) {
        if (isElement(reader) && isLeftOut(reader, leftOut)) {
            result = xmlTextReaderNext(&reader);
            continue;
        }
        if (isText(reader)) {
            appendWords(text, asText(xmlTextReaderConstValue(&reader)));
        } else if (isElement(reader) && !keyOf(reader).empty()) {
            appendWords(text, "[" + keyOf(reader) + "]");
        }
        result = xmlTextReaderRead(&reader);
    }
    return cutToMost(text.substr(0, text.find_last_not_of(' ') + 1));
}

std::string titleIn(xmlTextReader& reader, const std::string& id,
                    std::span<const ExcludedElement> leftOut) {
    bool isInTopic = id.empty();
    while (xmlTextReaderRead(&reader) == 1) {
        if (!isElement(reader)) {
            continue;
        }
        isInTopic = isInTopic || attributeOf(reader, "id") == id;
        if (isInTopic && isTitle(reader)) {
            return textInside(reader, leftOut);
        }
    }
    return {};
}

}  // namespace

std::string titleOfDocument(const std::string& path, const std::string& id,
                            std::span<const ExcludedElement> leftOut) {
    restrictLibxmlToLocalFiles();
    const RegularFile file(path);
    if (!file.isOpen()) {
        return {};
    }
    const LibxmlReader reader(
        xmlReaderForFd(file.descriptor(), nullptr, nullptr,
                       XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (!reader) {
        throw std::bad_alloc();
    }
    xmlTextReaderSetStructuredErrorHandler(reader.get(), ignoreError, nullptr);
    return titleIn(*reader, id, leftOut);
}

}  // namespace marrowpress
