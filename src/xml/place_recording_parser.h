#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "dom/source_places.h"
#include "xml/throwing_parser.h"

namespace marrowpress {

/// A parser that tells `SourcePlaces` where each start tag of a document stands.
///
/// The engine reports an element when it has read its start tag. Where that
/// begins is where the event before it ended: text, a tag, a comment, the end
/// of an entity. Elements that come out of an internal entity stand where the
/// document refers to it.
class PlaceRecordingDOMParser final : public QSXercesDOMParser {
public:
    /// `places` must outlive the parser.
    explicit PlaceRecordingDOMParser(SourcePlaces& places) : places_(places) {}

    void beginFile(const std::u16string& path) override;
    void endFile() override;

    void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                 const XMLCh* actualEncoding) override;
    void TextDecl(const XMLCh* version, const XMLCh* encoding) override;
    void docCharacters(const XMLCh* chars, XMLSize_t length, bool isCdataSection) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;
    void ignorableWhitespace(const XMLCh* chars, XMLSize_t length, bool isCdataSection) override;
    void doctypeDecl(const xercesc::DTDElementDecl& root, const XMLCh* publicId,
                     const XMLCh* systemId, bool hasInternalSubset,
                     bool hasExternalSubset) override;
    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, bool isRoot,
                    const XMLCh* prefix) override;
    void startEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override;

private:
    void noteEventEnd();
    SourcePlace currentPlace();
    std::uint32_t currentFile();

    SourcePlaces& places_;
    std::uint32_t ownFile_ = 0;
    SourcePlace lastEnd_;
    std::size_t openEntities_ = 0;
    std::size_t openInternalEntities_ = 0;
    std::vector<SourcePlace> openElements_;
    /// Those of the parse that is under way: a try that fails leaves no places behind.
    std::vector<std::pair<const xercesc::DOMNode*, SourcePlace>> recorded_;
};

}  // namespace marrowpress
