#include "xml/dom_parser.h"

#include <utility>
#include <xercesc/framework/XMLValidator.hpp>
#include <xercesc/internal/IGXMLScanner.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>

#include "support/scope_exit.h"
#include "support/text.h"
#include "support/xerces_ptr.h"
#include "xml/mapped_input.h"

namespace marrowpress {
namespace {

/// Compared with the number of any exception, whichever catalogue it is from. The engine's
/// exception for a DTD that can't be opened has it.
constexpr int kCouldNotOpenDtd = 41;

enum class Retry { kNone, kWithoutValidation, kWithoutGrammarCache };

Retry retryAfter(const xercesc::XMLException& failure, unsigned retryMask) {
    const bool isDtdMissing = static_cast<int>(failure.getCode()) == kCouldNotOpenDtd;
    if (!isDtdMissing && (retryMask & ParserBundle::kWithoutGrammarCache)) {
        return Retry::kWithoutGrammarCache;
    }
    return retryMask & ParserBundle::kWithoutValidation ? Retry::kWithoutValidation : Retry::kNone;
}

/// Bounds what one parse may expand: general entities may be referenced this often, which honest
/// documents never come near and a bomb passes within seconds.
xercesc::SecurityManager* expansionLimit() {
    static xercesc::SecurityManager manager;
    manager.setEntityExpansionLimit(250000);
    return &manager;
}

void applySettings(QSXercesDOMParser& parser, xercesc::HandlerBase* errorHandler,
                   QSXMLEntityResolver* entityResolver) {
    parser.setValidationScheme(xercesc::XercesDOMParser::Val_Auto);
    parser.setErrorHandler(errorHandler);
    parser.setXMLEntityResolver(entityResolver);
    parser.setDoNamespaces(false);
    parser.setDoSchema(true);
    parser.setValidationSchemaFullChecking(true);
    parser.setCreateEntityReferenceNodes(false);
    parser.cacheGrammarFromParse(true);
    parser.useCachedGrammarInParse(true);
    parser.setIgnoreCachedDTD(true);
    parser.setSecurityManager(expansionLimit());
}

}  // namespace

QSXercesParseException::QSXercesParseException(unsigned int code, const XMLCh* text,
                                               const char* sourceName, XMLFileLoc line,
                                               XMLFileLoc column)
    : XMLException(sourceName, line, nullptr), column_(column) {
    loadExceptText(static_cast<xercesc::XMLExcepts::Codes>(code), text, nullptr, nullptr, nullptr);
}

QSXercesDOMParser::QSXercesDOMParser()
    : XercesDOMParser(nullptr, xercesc::XMLPlatformUtils::fgMemoryManager, nullptr) {}

void QSXercesDOMParser::error(unsigned int code, const XMLCh* /*domain*/,
                              xercesc::XMLErrorReporter::ErrTypes /*type*/, const XMLCh* text,
                              const XMLCh* systemId, const XMLCh* publicId, XMLFileLoc line,
                              XMLFileLoc column) {
    if (!failure_) {
        failure_ = {std::u16string(domText(text)), std::u16string(domText(systemId)), line, column};
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

ParserBundle::ParserBundle()
    : parser_(std::make_unique<QSXercesDOMParser>()),
      errorHandler_(std::make_unique<xercesc::HandlerBase>()),
      entityResolver_(std::make_unique<QSXMLEntityResolver>()) {
    applySettings(*parser_, errorHandler_.get(), entityResolver_.get());
}

ParserBundle::~ParserBundle() {
    sendTerminate();
}

xercesc::DOMDocument* ParserBundle::parseFile(const std::u16string& path, unsigned retryMask) {
    if (path.empty()) {
        return nullptr;
    }
    Retry retry = Retry::kNone;
    try {
        return parseOnce(path);
    } catch (const xercesc::XMLException& failure) {
        retry = retryAfter(failure, retryMask);
        if (retry == Retry::kNone) {
            throw;
        }
    }
    return retry == Retry::kWithoutValidation
               ? retryWithoutValidation(path, retryMask ^ kWithoutValidation)
               : retryWithoutGrammarCache(path, retryMask ^ kWithoutGrammarCache);
}

xercesc::DOMDocument* ParserBundle::parseOnce(const std::u16string& path) {
    parser_->forgetFailure();
    sendStart(path);
    const ScopeExit endSession([] { sendEnd(); });
    const MemMapLocalFileInputSource source(path.c_str(),
                                            xercesc::XMLPlatformUtils::fgMemoryManager);
    parser_->parse(source);
    return parser_->getDocument();
}

xercesc::DOMDocument* ParserBundle::retryWithoutValidation(const std::u16string& path,
                                                           unsigned retryMask) {
    const auto scheme = parser_->getValidationScheme();
    const bool loadsDtd = parser_->getLoadExternalDTD();
    const ScopeExit restore([&] {
        parser_->setValidationScheme(scheme);
        parser_->setLoadExternalDTD(loadsDtd);
    });
    parser_->setValidationScheme(xercesc::XercesDOMParser::Val_Never);
    parser_->setLoadExternalDTD(false);
    return parseFile(path, retryMask);
}

xercesc::DOMDocument* ParserBundle::retryWithoutGrammarCache(const std::u16string& path,
                                                             unsigned retryMask) {
    const bool isCaching = parser_->isCachingGrammarFromParse();
    const bool isUsing = parser_->isUsingCachedGrammarInParse();
    const ScopeExit restore([&] {
        // Crosswise; both are on whenever this runs.
        parser_->cacheGrammarFromParse(isUsing);
        parser_->useCachedGrammarInParse(isCaching);
    });
    parser_->cacheGrammarFromParse(false);
    parser_->useCachedGrammarInParse(false);
    return parseFile(path, retryMask);
}

}  // namespace marrowpress
