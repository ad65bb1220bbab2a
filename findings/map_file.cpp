#include "findings/map_file.h"

#include <libxml/xmlreader.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <string_view>

#include "findings/regular_file.h"
#include "host/libxml_handles.h"
#include "host/local_xml_input.h"

namespace marrowpress {
namespace {

/// What the start of a document says about its kind.
struct DocumentStart {
    std::string rootName;
    std::string rootClass;
    std::string publicId;
    std::string systemId;
};

/// In whatever letter case.
bool namesMap(const std::string& name) {
    return xmlStrcasestr(reinterpret_cast<const xmlChar*>(name.c_str()),
                         reinterpret_cast<const xmlChar*>("map"));
}

/// DITA's kinds of topics, and of files that are no topics either.
bool isKnownNoMap(std::string_view rootName) {
    constexpr std::array<std::string_view, 16> kNames{"topic",
                                                      "concept",
                                                      "task",
                                                      "reference",
                                                      "glossentry",
                                                      "glossgroup",
                                                      "dita",
                                                      "val",
                                                      "troubleshooting",
                                                      "machineryTask",
                                                      "learningBase",
                                                      "learningContent",
                                                      "learningOverview",
                                                      "learningPlan",
                                                      "learningSummary",
                                                      "learningAssessment"};
    return std::find(kNames.begin(), kNames.end(), rootName) != kNames.end();
}

/// Whether the identifiers are those of a DTD that surely describes no maps.
bool isKnownNoMapDtd(const DocumentStart& start) {
    constexpr std::array<std::string_view, 3> kOwners{"-//OASIS//DTD DITA", "-//OASIS//DTD DocBook",
                                                      "-//W3C//"};
    return std::any_of(kOwners.begin(), kOwners.end(), [&start](std::string_view owner) {
        return start.publicId.starts_with(owner);
    });
}

/// A class value decides, then the names. Without either, a DTD that is not known may still give
/// one, and nothing else can.
bool mayBeMap(const DocumentStart& start) {
    if (start.rootClass.find(" map/map ") != std::string::npos) {
        return true;
    }
    if (start.rootClass.find(" topic/") != std::string::npos || isKnownNoMap(start.rootName)) {
        return false;
    }
    if (start.rootName == "subjectScheme" || namesMap(start.rootName) || namesMap(start.publicId) ||
        namesMap(start.systemId)) {
        return true;
    }
    const bool hasDtd = !start.publicId.empty() || !start.systemId.empty();
    return hasDtd && !isKnownNoMapDtd(start);
}

/// Keeps the first error that ended the parse.
void keepError(void* kept, xmlError* error) {
    auto& file = *static_cast<MapFile*>(kept);
    if (error->level != XML_ERR_FATAL || file.kind == MapFile::Kind::kNotWellFormed) {
        return;
    }
    file.kind = MapFile::Kind::kNotWellFormed;
    file.place.line = static_cast<std::uint32_t>(std::max(error->line, 0));
    file.place.column = static_cast<std::uint32_t>(std::max(error->int2, 0));
    file.reason = error->message ? error->message : "";
    while (file.reason.ends_with('\n')) {
        file.reason.pop_back();
    }
    std::replace(file.reason.begin(), file.reason.end(), '\n', ' ');
}

/// The start of the document that the reader has just opened; without a name when the root could
/// not be reached.
DocumentStart readStart(xmlTextReader& reader) {
    while (xmlTextReaderRead(&reader) == 1) {
        if (xmlTextReaderNodeType(&reader) != XML_READER_TYPE_ELEMENT) {
            continue;
        }
        DocumentStart start{std::string(asText(xmlTextReaderConstName(&reader))),
                            attributeOf(reader, "class"),
                            {},
                            {}};
        const xmlDoc* const document = xmlTextReaderCurrentDoc(&reader);
        if (const xmlDtd* const doctype = document ? document->intSubset : nullptr) {
            start.publicId = asText(doctype->ExternalID);
            start.systemId = asText(doctype->SystemID);
        }
        return start;
    }
    return {};
}

MapFile inspect(const RegularFile& file, const std::string& path) {
    const LibxmlReader reader(
        xmlReaderForFd(file.descriptor(), nullptr, nullptr,
                       XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (!reader) {
        throw std::bad_alloc();
    }
    MapFile found;
    found.place.file = path;
    xmlTextReaderSetStructuredErrorHandler(reader.get(), keepError, &found);
    const DocumentStart start = readStart(*reader);
    found.rootName = start.rootName;
    if (found.kind == MapFile::Kind::kNotWellFormed) {
        return found;
    }
    if (start.rootName.empty()) {
        found.kind = MapFile::Kind::kNotWellFormed;
        found.reason = "there is no root element";
    } else if (!mayBeMap(start)) {
        found.kind = MapFile::Kind::kNoMap;
    }
    return found;
}

}  // namespace

MapFile inspectMapFile(const std::string& path) {
    restrictLibxmlToLocalFiles();
    const RegularFile file(path);
    if (!file.isOpen()) {
        return {MapFile::Kind::kUnreadable, {}, {path}, file.fault()};
    }
    return inspect(file, path);
}

}  // namespace marrowpress
