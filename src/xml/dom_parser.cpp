#include "xml/dom_parser.h"

#include <utility>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include "support/scope_exit.h"
#include "support/short_cuts.h"
#include "support/text.h"
#include "support/work_counts.h"
#include "support/xerces_ptr.h"
#include "xml/mapped_input.h"
#include "xml/place_recording_parser.h"
#include "xml/request_memory.h"

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
    parser.setResolver(*entityResolver);
    parser.setDoNamespaces(false);
    parser.setDoSchema(true);
    parser.setValidationSchemaFullChecking(true);
    parser.setCreateEntityReferenceNodes(false);
    parser.cacheGrammarFromParse(true);
    parser.useCachedGrammarInParse(true);
    parser.setIgnoreCachedDTD(true);
    parser.setSecurityManager(expansionLimit());
}

/// What a try of the file at `path` comes to that is known to fail: scanning a DTD costs as much as
/// a hundred topics.
[[noreturn]] void repeatFailure(const std::u16string& path, const std::exception_ptr& failure) {
    sendStart(path);
    sendEnd();
    std::rethrow_exception(failure);
}

std::unique_ptr<QSXercesDOMParser> makeParser() {
    if (SourcePlaces* const places = SourcePlaces::existing()) {
        return std::make_unique<PlaceRecordingDOMParser>(*places);
    }
    return std::make_unique<QSXercesDOMParser>();
}

}  // namespace

ParserBundle::ParserBundle()
    : parser_(makeParser()),
      errorHandler_(std::make_unique<xercesc::HandlerBase>()),
      entityResolver_(std::make_unique<QSXMLEntityResolver>()) {
    applySettings(*parser_, errorHandler_.get(), entityResolver_.get());
}

ParserBundle::~ParserBundle() {
    sendTerminate();
}

xercesc::DOMDocument* ParserBundle::parseFile(const std::u16string& path, unsigned retryMask) {
    history_ = {};
    ++WorkCounts::total().documents;
    return path.empty() ? nullptr : parseWithRetries(path, retryMask);
}

void ParserBundle::borrowDtd(const KeptDtd& dtd) {
    for (const std::string& publicId : dtd.publicIds) {
        entityResolver_->resolvePublicId(publicId);
    }
    parser_->borrowDtd(*dtd.grammar);
}

/// Without a `knownFailure`, which else is that of the first try.
xercesc::DOMDocument* ParserBundle::parseWithRetries(const std::u16string& path, unsigned retryMask,
                                                     const std::exception_ptr& knownFailure) {
    Retry retry = Retry::kNone;
    std::exception_ptr failureToRepeat;
    try {
        if (knownFailure) {
            repeatFailure(path, knownFailure);
        }
        return parseOnce(path);
    } catch (const xercesc::XMLException& failure) {
        if (parser_->getLoadExternalDTD()) {
            history_.failureWithDtd = parser_->failure();
        }
        retry = retryAfter(failure, retryMask);
        if (retry == Retry::kNone) {
            throw;
        }
        if (ShortCuts::taken().passOverRepeatedTries && parser_->wouldFailAgain()) {
            failureToRepeat = std::current_exception();
        }
    }
    return retry == Retry::kWithoutValidation
               ? retryWithoutValidation(path, retryMask ^ kWithoutValidation)
               : retryWithoutGrammarCache(path, retryMask ^ kWithoutGrammarCache, failureToRepeat);
}

xercesc::DOMDocument* ParserBundle::parseOnce(const std::u16string& path) {
    ++WorkCounts::total().tries;
    parser_->beginTry();
    sendStart(path);
    const ScopeExit endSession([] { sendEnd(); });
    const MemMapLocalFileInputSource source(path.c_str(),
                                            xercesc::XMLPlatformUtils::fgMemoryManager);
    const TryLimits limits(path);
    try {
        parser_->beginFile(path);
        parser_->parse(source);
        parser_->endFile();
        parser_->succeed();
        return parser_->getDocument();
    } catch (const xercesc::OutOfMemoryException&) {
        parser_->fail();
        dropDocument();
        replaceParser();
        throw;
    } catch (...) {
        parser_->fail();
        // The parser would keep the half of a tree until it ends, that of each try beside the
        // others.
        dropDocument();
        throw;
    }
}

void ParserBundle::replaceParser() {
    brokenParsers_.push_back(std::exchange(parser_, makeParser()));
    applySettings(*parser_, errorHandler_.get(), entityResolver_.get());
}

void ParserBundle::dropDocument() noexcept {
    const XercesPtr<xercesc::DOMDocument> dropped{parser_->adoptDocument()};
    parser_->resetDocument();
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
    history_.isReadWithoutDtd = true;
    return parseWithRetries(path, retryMask);
}

xercesc::DOMDocument* ParserBundle::retryWithoutGrammarCache(
    const std::u16string& path, unsigned retryMask, const std::exception_ptr& knownFailure) {
    const bool isCaching = parser_->isCachingGrammarFromParse();
    const bool isUsing = parser_->isUsingCachedGrammarInParse();
    const ScopeExit restore([&] {
        // Crosswise; both are on whenever this runs.
        parser_->cacheGrammarFromParse(isUsing);
        parser_->useCachedGrammarInParse(isCaching);
    });
    parser_->cacheGrammarFromParse(false);
    parser_->useCachedGrammarInParse(false);
    return parseWithRetries(path, retryMask, knownFailure);
}

}  // namespace marrowpress
