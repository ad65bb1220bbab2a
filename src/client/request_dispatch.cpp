#include "client/request_dispatch.h"

#include <atomic>
#include <memory>
#include <new>
#include <utility>

#include "application/host_operations.h"
#include "application/run_observer.h"
#include "application/text_layer.h"
#include "client/client_attachment.h"
#include "client/xml_session.h"
#include "publish/output_formats.h"
#include "publish/publish_result.h"
#include "references/copied_references.h"
#include "references/published_content.h"
#include "support/request_singleton.h"
#include "support/scope_exit.h"
#include "xml/request_memory.h"

namespace marrowpress {
namespace {

constexpr const char* kEndlessCopies = "references in copied content multiply beyond all bounds";

/// Why a run that says nothing itself has failed; empty where that has been told.
const char* reasonOfFailure() noexcept {
    if (isMemoryExhausted()) {
        return kNotEnoughMemory;
    }
    const CopiedReferences* const copied = RequestSingleton<CopiedReferences>::existing();
    return copied && copied->isSpent() ? kEndlessCopies : "";
}

std::unique_ptr<PublishResult> runRequest(const char* text) {
    const OutputFormats& formats = OutputFormats::instance();
    std::unique_ptr<PublishParams> params = parseRequest(formats.factories(), text);
    DocPublisher& publisher = formats.publisherFor(*params);
    return publisher.publish(std::move(params));
}

/// Calls `tell` with the observer, if there is one. Whatever becomes of that, the run has its
/// outcome.
template <class Tell>
void tellObserver(Tell&& tell) noexcept {
    try {
        if (RunObserver* const observer = RunObserver::existing()) {
            tell(*observer);
        }
    } catch (...) {
        // There was no memory for it.
    }
}

/// Allocates nothing: it may be memory that the run failed for.
void fail(PublishResult& fallback, std::int32_t code, const char* reason) noexcept {
    fallback.status = code;
    tellObserver([&](RunObserver& observer) { observer.runFailed(reason); });
}

/// The result of the request; null when it fails, with the status of that in `fallback`.
std::unique_ptr<PublishResult> serveRequest(const char* text, PublishResult& fallback) noexcept {
    std::unique_ptr<PublishResult> result;
    try {
        result = runRequest(text);
        requireWorkingHost();
        requireMemory();
    } catch (const PublishException& failure) {
        fail(fallback, failure.code(), reasonOfFailure());
        result.reset();
    } catch (const std::bad_alloc&) {
        fail(fallback, PublishException().code(), kNotEnoughMemory);
        result.reset();
    } catch (const std::exception& failure) {
        fail(fallback, PublishException().code(), failure.what());
        result.reset();
    } catch (...) {
        fail(fallback, PublishException().code(), reasonOfFailure());
        result.reset();
    }
    tellObserver([](RunObserver& observer) { observer.finish(isPublished); });
    return result;
}

/// The answer of a run that failed.
HostTypedValues failedAnswer() {
    PublishResult result(PublisherId::kNone);
    result.status = PublishException().code();
    return publishResultToTypedValues(result);
}

/// Sends `result`, or, where that can't be put into values or the host throws it back, `refusal`.
void answer(const PublishResult& result, HostTypedValues refusal) {
    forgetHostExceptions();
    try {
        HostReturnTypedValue(publishResultToTypedValues(result));
        if (!hasHostThrown()) {
            return;
        }
    } catch (...) {
        // There is no memory for the values, and nobody to tell but the caller.
    }
    HostReturnTypedValue(std::move(refusal));
}

}  // namespace

void onClientInitialize(std::uint32_t initCode) {
    if (initCode != IClientLifecycle::kInitialize) {
        return;
    }
    HostEnableUnicode(1);
    initializeTextLayer();
    HostSetClientEncoding("UTF-8");
    HostRegisterNotification(IClientNotification::kClientCall, 1);
    HostFinishMessageLoop = true;
}

void onNotify(std::uint32_t notification, std::uint32_t /*objectId*/, const char* text,
              std::int32_t /*number*/) {
    if (notification != IClientNotification::kClientCall) {
        return;
    }
    // Allocated while nothing has happened yet: it can be sent whatever fails later.
    HostTypedValues refusal = failedAnswer();
    static std::atomic<bool> isServing = false;
    if (isServing.exchange(true)) {
        HostReturnTypedValue(std::move(refusal));
        return;
    }
    const ScopeExit endServing([] { isServing = false; });
    forgetHostExceptions();
    // What goes back when the run yields no result of its own. Both outlive the session.
    PublishResult fallback(PublisherId::kNone);
    std::unique_ptr<PublishResult> result;
    const XmlSession session;
    result = serveRequest(text, fallback);
    answer(result ? *result : fallback, std::move(refusal));
}

}  // namespace marrowpress
