#include "xml/grammar_parser_cache.h"

#include <utility>
#include <xercesc/dom/DOMDocumentType.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>

#include "application/run_observer.h"
#include "dom/document_path.h"
#include "support/request_singleton.h"
#include "support/scope_exit.h"
#include "support/short_cuts.h"
#include "support/work_counts.h"
#include "support/xerces_ptr.h"
#include "xml/document_store.h"
#include "xml/mapped_input.h"
#include "xml/request_memory.h"

namespace marrowpress {
namespace {

/// Loads a DTD; tells, before the exception goes on, why that fails.
void loadDtd(QSXercesDOMParser& parser, const xercesc::InputSource& dtd,
             const std::u16string& path) {
    constexpr bool kToCache = false;
    const TryLimits limits(path);
    ++WorkCounts::total().dtdScans;
    try {
        parser.loadGrammar(dtd, xercesc::Grammar::DTDGrammarType, kToCache);
    } catch (...) {
        if (RunObserver* const observer = RunObserver::existing()) {
            ObservedFault fault{.code = FaultCode::kCannotRead};
            fault.target = path;
            if (const std::optional<ParseFailure>& failure = parser.failure()) {
                fault.reason = failure->reason;
                fault.place = {SourcePlaces::existing()->fileNumber(failure->systemId),
                               static_cast<std::uint32_t>(failure->line),
                               static_cast<std::uint32_t>(failure->column)};
            }
            observer->fault(fault);
        }
        throw;
    }
}

/// The DTD at `path` that documents were read with; null if there is none.
const KeptDtd* dtdOfDocuments(const std::u16string& path) {
    const DocumentStore* const documents = RequestSingleton<DocumentStore>::existing();
    return documents && ShortCuts::taken().shareDtds ? documents->dtd(path) : nullptr;
}

/// A bundle whose parser has the DTD at `path`; none for an empty path.
ParserBundle bundleWithDtd(const std::u16string& path) {
    ParserBundle bundle;
    if (const KeptDtd* const kept = dtdOfDocuments(path)) {
        bundle.borrowDtd(*kept);
    } else if (!path.empty()) {
        // Not by name, for the engine would then open whatever kind of file it is.
        const MemMapLocalFileInputSource dtd(path.c_str(),
                                             xercesc::XMLPlatformUtils::fgMemoryManager);
        loadDtd(bundle.parser(), dtd, path);
    }
    return bundle;
}

}  // namespace

GrammarParserCache& GrammarParserCache::instance() {
    return RequestSingleton<GrammarParserCache>::instance();
}

ParserBundle& GrammarParserCache::parserForDocument(const xercesc::DOMDocument& document) {
    std::u16string path = resolveDtdPath(document);
    const auto known = bundles_.find(path);
    if (known != bundles_.end()) {
        return known->second;
    }
    // The bundle that it moves from sends its "terminate" when it ends here.
    ParserBundle bundle = bundleWithDtd(path);
    return bundles_.emplace(std::move(path), std::move(bundle)).first->second;
}

std::u16string GrammarParserCache::resolveDtdPath(const xercesc::DOMDocument& document) {
    const xercesc::DOMDocumentType* const doctype = document.getDoctype();
    if (!doctype) {
        return {};
    }
    sendStart(documentPath(document));
    const ScopeExit endSession([] { sendEnd(); });
    const std::u16string ids = std::u16string(domText(doctype->getSystemId()))
                                   .append(u"\n")
                                   .append(domText(doctype->getPublicId()));
    const auto known = pathsByIds_.find(ids);
    if (known != pathsByIds_.end() && ShortCuts::taken().rememberDtdPaths) {
        return known->second;
    }
    xercesc::XMLResourceIdentifier identifier(xercesc::XMLResourceIdentifier::SchemaGrammar,
                                              doctype->getSystemId(), doctype->getNamespaceURI(),
                                              doctype->getPublicId(), nullptr, nullptr);
    std::u16string path = resolver_.resolvePath(identifier);
    if (!path.empty()) {
        pathsByIds_[ids] = path;
    }
    return path;
}

}  // namespace marrowpress
