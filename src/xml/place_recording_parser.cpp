#include "xml/place_recording_parser.h"

#include <xercesc/internal/ReaderMgr.hpp>
#include <xercesc/internal/XMLScanner.hpp>

#include "support/xerces_ptr.h"

namespace marrowpress {

void PlaceRecordingDOMParser::beginFile(const std::u16string& path) {
    ownFile_ = places_.fileNumber(path);
    lastEnd_ = {ownFile_, 1, 1};
    openEntities_ = 0;
    openInternalEntities_ = 0;
    openElements_.clear();
    recorded_.clear();
}

void PlaceRecordingDOMParser::endFile() {
    for (const auto& [node, place] : recorded_) {
        places_.record(*node, place);
    }
    recorded_.clear();
}

void PlaceRecordingDOMParser::XMLDecl(const XMLCh* version, const XMLCh* encoding,
                                      const XMLCh* standalone, const XMLCh* actualEncoding) {
    XercesDOMParser::XMLDecl(version, encoding, standalone, actualEncoding);
    noteEventEnd();
}

void PlaceRecordingDOMParser::TextDecl(const XMLCh* version, const XMLCh* encoding) {
    XercesDOMParser::TextDecl(version, encoding);
    noteEventEnd();
}

void PlaceRecordingDOMParser::docCharacters(const XMLCh* chars, XMLSize_t length,
                                            bool isCdataSection) {
    XercesDOMParser::docCharacters(chars, length, isCdataSection);
    noteEventEnd();
}

void PlaceRecordingDOMParser::docComment(const XMLCh* comment) {
    XercesDOMParser::docComment(comment);
    noteEventEnd();
}

void PlaceRecordingDOMParser::docPI(const XMLCh* target, const XMLCh* data) {
    XercesDOMParser::docPI(target, data);
    noteEventEnd();
}

void PlaceRecordingDOMParser::ignorableWhitespace(const XMLCh* chars, XMLSize_t length,
                                                  bool isCdataSection) {
    XercesDOMParser::ignorableWhitespace(chars, length, isCdataSection);
    noteEventEnd();
}

void PlaceRecordingDOMParser::doctypeDecl(const xercesc::DTDElementDecl& root,
                                          const XMLCh* publicId, const XMLCh* systemId,
                                          bool hasInternalSubset, bool hasExternalSubset) {
    XercesDOMParser::doctypeDecl(root, publicId, systemId, hasInternalSubset, hasExternalSubset);
    recorded_.emplace_back(getDocument()->getDoctype(), lastEnd_);
    noteEventEnd();
}

void PlaceRecordingDOMParser::startElement(const xercesc::XMLElementDecl& declaration,
                                           unsigned int uriId, const XMLCh* prefix,
                                           const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                           XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    openElements_.push_back(lastEnd_);
    noteEventEnd();
    QSXercesDOMParser::startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty,
                                    isRoot);
}

void PlaceRecordingDOMParser::endElement(const xercesc::XMLElementDecl& declaration,
                                         unsigned int uriId, bool isRoot, const XMLCh* prefix) {
    // Here and not at the start: of an empty element the engine reports both within one call.
    recorded_.emplace_back(fCurrentParent, openElements_.back());
    openElements_.pop_back();
    XercesDOMParser::endElement(declaration, uriId, isRoot, prefix);
    noteEventEnd();
}

void PlaceRecordingDOMParser::startEntityReference(const xercesc::XMLEntityDecl& declaration) {
    XercesDOMParser::startEntityReference(declaration);
    ++openEntities_;
    if (declaration.isExternal()) {
        noteEventEnd();
    } else if (openInternalEntities_++ == 0) {
        // The reference was read. It holds its name, "&" and ";", and no line end.
        lastEnd_ = currentPlace();
        lastEnd_.column -= static_cast<std::uint32_t>(domText(declaration.getName()).size() + 2);
    }
}

void PlaceRecordingDOMParser::endEntityReference(const xercesc::XMLEntityDecl& declaration) {
    XercesDOMParser::endEntityReference(declaration);
    --openEntities_;
    if (!declaration.isExternal()) {
        --openInternalEntities_;
    }
    noteEventEnd();
}

void PlaceRecordingDOMParser::noteEventEnd() {
    // What an internal entity holds stands where the reference to it does.
    if (openInternalEntities_ == 0) {
        lastEnd_ = currentPlace();
    }
}

SourcePlace PlaceRecordingDOMParser::currentPlace() {
    const xercesc::ReaderMgr& readers = *getScanner()->getReaderMgr();
    return {currentFile(), static_cast<std::uint32_t>(readers.getLineNumber()),
            static_cast<std::uint32_t>(readers.getColumnNumber())};
}

/// The document's own file, unless an external entity is being read.
std::uint32_t PlaceRecordingDOMParser::currentFile() {
    if (openEntities_ == 0) {
        return ownFile_;
    }
    return places_.fileNumber(domText(getScanner()->getReaderMgr()->getSystemId()));
}

}  // namespace marrowpress
