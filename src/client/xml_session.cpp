#include "client/xml_session.h"

#include <unicode/ucnv.h>

#include <memory>
#include <stdexcept>
#include <utility>
#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/Transcoders/ICU/ICUTransService.hpp>
#include <xercesc/util/XMLInitializer.hpp>
#include <xercesc/util/XMLString.hpp>

#include "application/messengers.h"
#include "application/run_observer.h"
#include "profiling/condition_merge.h"
#include "references/copied_references.h"
#include "references/exclusion_filter.h"
#include "references/topic_ids.h"
#include "support/request_singleton.h"
#include "xml/document_store.h"
#include "xml/grammar_parser_cache.h"
#include "xml/replaced_files.h"

namespace marrowpress {
namespace {

/// Throws where Xerces' own handler would end the process, which is the host's.
class ThrowingPanicHandler final : public xercesc::PanicHandler {
public:
    void panic(const PanicReasons reason) override {
        throw std::runtime_error(getPanicReasonString(reason));
    }
};

struct CloseConverter {
    void operator()(UConverter* converter) const noexcept { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

/// A converter of the encoding that the system's texts have.
Converter openConverter() {
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(nullptr, &error));
    if (!converter) {
        throw std::runtime_error(u_errorName(error));
    }
    return converter;
}

struct SetTranscoder {
    using Function = void (*)(xercesc::XMLLCPTranscoder*, xercesc::MemoryManager*);
};
struct StartDomRegistry {
    using Function = void (*)();
};
struct StartDom {
    using Function = void (*)();
};
struct StartDoctypes {
    using Function = void (*)();
};

SetTranscoder::Function engineFunction(SetTranscoder);
StartDomRegistry::Function engineFunction(StartDomRegistry);
StartDom::Function engineFunction(StartDom);
StartDoctypes::Function engineFunction(StartDoctypes);

/// The engine keeps these functions to itself; access is not checked where a template is
/// instantiated by name.
template <class Name, typename Name::Function Granted>
struct EngineAccess {
    friend typename Name::Function engineFunction(Name /*name*/) { return Granted; }
};
template struct EngineAccess<SetTranscoder, &xercesc::XMLString::initString>;
template struct EngineAccess<StartDomRegistry,
                             &xercesc::XMLInitializer::initializeDOMImplementationRegistry>;
template struct EngineAccess<StartDom, &xercesc::XMLInitializer::initializeDOMImplementationImpl>;
template struct EngineAccess<StartDoctypes,
                             &xercesc::XMLInitializer::initializeDOMDocumentTypeImpl>;

/// The engine, started and ended as a whole.
///
/// After a start that breaks off it takes itself for started while it is only in part: it can't be
/// used, and to end it would crash. What it opens for itself is one converter; all else is memory,
/// which is never refused meanwhile. So it starts with a converter to spare, with which a start
/// that broke off is brought to its end and undone.
class Engine : private xercesc::XMLInitializer {
public:
    static void start(RequestMemory& memory) {
        static ThrowingPanicHandler panicHandler;
        Converter spare = openConverter();
        memory.setUnlimited(true);
        try {
            xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                                  &panicHandler, &memory);
        } catch (...) {
            finishStart(std::move(spare), memory);
            xercesc::XMLPlatformUtils::Terminate();
            throw;
        }
        memory.setUnlimited(false);
    }

    static void end() { xercesc::XMLPlatformUtils::Terminate(); }

private:
    static void finishStart(Converter converter, RequestMemory& memory) {
        engineFunction(SetTranscoder())(
            new (&memory) xercesc::ICULCPTranscoder(converter.release()), &memory);
        try {
            initializeStaticData();
        } catch (...) {
            startWhatItsEndNeeds();
        }
    }

    /// Some of what the engine starts with isn't taken from its memory, and there may be none. All
    /// that is missing it doesn't end, but for the document that doctypes without one belong to.
    static void startWhatItsEndNeeds() {
        engineFunction(StartDomRegistry())();
        engineFunction(StartDom())();
        engineFunction(StartDoctypes())();
    }
};

}  // namespace

XmlSession::XmlSession() {
    Engine::start(memory_);
    try {
        RunObserver::begin();
    } catch (...) {
        // Without a session nobody else ends what has begun.
        memory_.setUnlimited(true);
        RunObserver::end();
        Engine::end();
        throw;
    }
}

XmlSession::~XmlSession() {
    memory_.setUnlimited(true);
    RequestSingleton<DocumentStore>::destroy();
    RequestSingleton<GrammarParserCache>::destroy();
    RequestSingleton<ReplacedFiles>::destroy();
    RequestSingleton<CopiedReferences>::destroy();
    RequestSingleton<TopicIdGenerator>::destroy();
    RequestSingleton<OpenDocumentTable>::destroy();
    RequestSingleton<ProgressMessenger>::destroy();
    RequestSingleton<ReportMessenger>::destroy();
    RequestSingleton<ExclusionFilterHolder>::destroy();
    RequestSingleton<ConditionRenamer>::destroy();
    RequestSingleton<ConditionCatalogs>::destroy();
    RunObserver::end();
    Engine::end();
}

}  // namespace marrowpress
