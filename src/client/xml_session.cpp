#include "client/xml_session.h"

#include <stdexcept>
#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "application/messengers.h"
#include "application/run_observer.h"
#include "profiling/condition_merge.h"
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

/// Whether an initialisation has failed. Xerces then takes itself for initialised while it is only
/// in part, and can neither be used nor be terminated any more.
bool isPlatformBroken = false;

void initializePlatform() {
    static ThrowingPanicHandler panicHandler;
    if (isPlatformBroken) {
        throw std::runtime_error("the XML platform could not be initialised before");
    }
    isPlatformBroken = true;
    xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                          &panicHandler);
    isPlatformBroken = false;
}

}  // namespace

XmlSession::XmlSession() {
    initializePlatform();
    isPlatformInitialized_ = true;
    RunObserver::begin();
}

XmlSession::~XmlSession() {
    if (!isPlatformInitialized_) {
        return;
    }
    RequestSingleton<DocumentStore>::destroy();
    RequestSingleton<GrammarParserCache>::destroy();
    RequestSingleton<ReplacedFiles>::destroy();
    RequestSingleton<TopicIdGenerator>::destroy();
    RequestSingleton<OpenDocumentTable>::destroy();
    RequestSingleton<ProgressMessenger>::destroy();
    RequestSingleton<ReportMessenger>::destroy();
    RequestSingleton<ExclusionFilterHolder>::destroy();
    RequestSingleton<ConditionRenamer>::destroy();
    RunObserver::end();
    xercesc::XMLPlatformUtils::Terminate();
    isPlatformInitialized_ = false;
}

}  // namespace marrowpress
