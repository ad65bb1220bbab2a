#include "xml/throwing_parser.h"

#include <xercesc/framework/XMLValidator.hpp>
#include <xercesc/internal/IGXMLScanner.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>

#include "support/text.h"
#include "support/xerces_ptr.h"

namespace marrowpress {

QSXercesParseException::QSXercesParseException(unsigned int code, const XMLCh* text,
                                               const char* sourceName, XMLFileLoc line,
                                               XMLFileLoc column)
    : XMLException(sourceName, line, nullptr), column_(column) {
    loadExceptText(static_cast<xercesc::XMLExcepts::Codes>(code), text, nullptr, nullptr, nullptr);
}

QSXercesDOMParser::QSXercesDOMParser()
    : XercesDOMParser(nullptr, xercesc::XMLPlatformUtils::fgMemoryManager, nullptr) {}

void QSXercesDOMParser::beginFile(const std::u16string& /*path*/) {}

void QSXercesDOMParser::endFile() {}

void QSXercesDOMParser::error(unsigned int code, const XMLCh* domain,
                              xercesc::XMLErrorReporter::ErrTypes /*type*/, const XMLCh* text,
                              const XMLCh* systemId, const XMLCh* publicId, XMLFileLoc line,
                              XMLFileLoc column) {
    if (!failure_) {
        failure_ = {std::u16string(domText(text)), std::u16string(domText(systemId)), line, column,
                    domText(domain) == domText(xercesc::XMLUni::fgValidityDomain)};
    }
    // The source is named by its public identifier: the file's name varies from place to place.
    const std::string sourceName = toUtf8(publicId).value_or(std::string());
    throw QSXercesParseException(code, text, sourceName.c_str(), line, column);
}

bool QSXercesDOMParser::declaresAttribute(const XMLCh* element, const XMLCh* attribute) const {
    const auto* const scanner = dynamic_cast<const xercesc::IGXMLScanner*>(getScanner());
    const xercesc::XMLValidator* const validator = scanner ? scanner->getValidator() : nullptr;
    xercesc::Grammar* const grammar = validator ? validator->getGrammar() : nullptr;
    if (!grammar) {
        return false;
    }
    auto* const declaration = dynamic_cast<xercesc::DTDElementDecl*>(grammar->getElemDecl(
        scanner->getEmptyNamespaceId(), nullptr, element, xercesc::Grammar::TOP_LEVEL_SCOPE));
    return declaration && declaration->getAttDef(attribute);
}

}  // namespace marrowpress
